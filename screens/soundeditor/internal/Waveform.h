#pragma once
// The waveform of a sound file for the sound editor's plot: for each pixel
// column the smallest and largest left-channel sample of the frames that fall
// into it, scaled to -1..1. The file is streamed in pieces through the loader,
// so a five-minute recording needs no more memory than one piece.
#include <cstdint>
#include <string>
#include <vector>

struct Waveform {
    std::vector<float> minima;  // one per column, -1..1
    std::vector<float> maxima;
    uint32_t frames = 0;        // length in the engine's frames (44100 per second)
    double seconds() const { return frames / 44100.0; }
    bool empty() const { return minima.empty(); }
};

// Files shorter than this show an empty plot (the length is still given).
inline constexpr double kShortestWaveformSeconds = 0.00005;

// False when the file cannot be read (the waveform is then empty, 0 frames).
bool waveformOfFile(const std::string& path, int columns, Waveform* waveform);
