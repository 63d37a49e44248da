#pragma once
#include <cstdint>

constexpr double kPlayerSampleRate = 44100.0;
constexpr uint64_t kForever = ~0ull;

// Frames per sixteenth-note step at a tempo, truncated: 120 bpm gives 5512.
inline uint64_t framesPerStep(float bpm) {
    return static_cast<uint64_t>(kPlayerSampleRate / (static_cast<double>(bpm) * 4.0 / 60.0));
}
