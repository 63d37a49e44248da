#pragma once
// Turns raw rendered audio into a built-in sound file: 44100 Hz 16-bit WAV
// that starts on its first audible frame (the player starts a note at frame
// 0, so leading silence would make every hit late), is cut to its length
// with a fade, and peaks at about -1 dBFS without a single clipped sample.
#include <string>
#include <vector>

namespace resgen {

constexpr int kSampleRate = 44100;

struct Audio {
    int channels = 1;
    std::vector<float> samples;  // interleaved
    size_t frames() const { return channels > 0 ? samples.size() / size_t(channels) : 0; }
};

// Reads any file libsndfile knows; fails on a rate other than 44100 Hz.
bool readAudio(const std::string& path, Audio& audio, std::string& error);

// Trims, cuts, fades and normalises in place; fails on silence.
bool finishSound(Audio& audio, double maxSeconds, std::string& error);

// Writes 16-bit PCM WAV through a temporary file, so a reader never sees half a file.
bool writeWav16(const Audio& audio, const std::string& path, std::string& error);

}  // namespace resgen
