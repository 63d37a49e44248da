#include "resources/generator/SoundFinisher.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

namespace resgen {
namespace {

constexpr double kOnsetRatio = 0.02;    // -34 dB below the peak: where the sound starts
constexpr double kTailRatio = 0.0015;   // -56 dB below the peak: where its tail has died away
constexpr double kTargetPeak = 0.8913;  // -1 dBFS
constexpr double kCutFade = 0.25;       // seconds of fade when the length limit cuts the sound
constexpr double kEndFade = 0.02;       // seconds of fade on a tail that ended by itself

float framePeak(const Audio& a, size_t frame) {
    float m = 0;
    for (int c = 0; c < a.channels; ++c) m = std::max(m, std::fabs(a.samples[frame * size_t(a.channels) + size_t(c)]));
    return m;
}

float peakOf(const Audio& a) {
    float m = 0;
    for (float s : a.samples) m = std::max(m, std::fabs(s));
    return m;
}

}  // namespace

bool readAudio(const std::string& path, Audio& audio, std::string& error) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) {
        error = path + ": " + sf_strerror(nullptr);
        return false;
    }
    if (info.samplerate != kSampleRate || info.channels < 1) {
        error = path + ": expected 44100 Hz audio";
        sf_close(file);
        return false;
    }
    audio.channels = info.channels;
    audio.samples.assign(size_t(info.frames) * size_t(info.channels), 0.0f);
    const sf_count_t got = sf_readf_float(file, audio.samples.data(), info.frames);
    sf_close(file);
    audio.samples.resize(size_t(std::max<sf_count_t>(got, 0)) * size_t(info.channels));
    return true;
}

bool finishSound(Audio& audio, double maxSeconds, std::string& error) {
    const float peak = peakOf(audio);
    if (!(peak > 0.0f) || !std::isfinite(peak)) {
        error = "silent or broken audio";
        return false;
    }
    const size_t frames = audio.frames();
    size_t first = 0;
    while (first < frames && framePeak(audio, first) < kOnsetRatio * peak) ++first;
    size_t end = frames;
    while (end > first && framePeak(audio, end - 1) < kTailRatio * peak) --end;

    const size_t maxFrames = size_t(maxSeconds * kSampleRate);
    const bool cut = end - first > maxFrames;
    const size_t length = cut ? maxFrames : end - first;
    const size_t ch = size_t(audio.channels);
    audio.samples.erase(audio.samples.begin() + std::ptrdiff_t((first + length) * ch), audio.samples.end());
    audio.samples.erase(audio.samples.begin(), audio.samples.begin() + std::ptrdiff_t(first * ch));

    // Raised-cosine fade over the last frames, reaching zero on the final frame.
    const size_t fade = std::min(size_t((cut ? kCutFade : kEndFade) * kSampleRate), length / 3);
    for (size_t i = 0; i < fade; ++i) {
        const double x = double(i + 1) / double(fade);  // 1 on the final frame
        const auto gain = float(0.5 * (1.0 + std::cos(std::numbers::pi * x)));
        const size_t frame = length - fade + i;
        for (size_t c = 0; c < ch; ++c) audio.samples[frame * ch + c] *= gain;
    }

    const float finalPeak = peakOf(audio);
    const auto gain = float(kTargetPeak / finalPeak);
    for (float& s : audio.samples) s *= gain;
    return true;
}

bool writeWav16(const Audio& audio, const std::string& path, std::string& error) {
    std::vector<int16_t> pcm(audio.samples.size());
    for (size_t i = 0; i < pcm.size(); ++i) {
        const long v = std::lround(double(audio.samples[i]) * 32767.0);
        pcm[i] = int16_t(std::clamp(v, -32766L, 32766L));
    }
    const std::string temp = path + ".part";
    SF_INFO info{};
    info.samplerate = kSampleRate;
    info.channels = audio.channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(temp.c_str(), SFM_WRITE, &info);
    if (!file) {
        error = temp + ": " + sf_strerror(nullptr);
        return false;
    }
    const auto frames = sf_count_t(audio.frames());
    const sf_count_t written = sf_writef_short(file, pcm.data(), frames);
    sf_close(file);
    if (written != frames) {
        error = temp + ": short write";
        std::remove(temp.c_str());
        return false;
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
        error = path + ": cannot rename into place";
        std::remove(temp.c_str());
        return false;
    }
    return true;
}

}  // namespace resgen
