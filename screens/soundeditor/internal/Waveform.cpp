#include "Waveform.h"

#include <algorithm>
#include <cmath>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"

bool waveformOfFile(const std::string& path, int columns, Waveform* waveform) {
    *waveform = Waveform{};
    if (columns <= 0) return false;
    AudioStreamDescription fileFormat{};
    uint64_t fileFrames = 0;
    AudioError error;
    if (!AudioFileLoaderOperation::infoForFileAtURL(path, &fileFormat, &fileFrames, &error)) return false;
    // The loader converts to 44.1 kHz; the expected length only spreads the
    // frames over the columns, the real count comes from the stream.
    const double rate = fileFormat.mSampleRate > 0 ? fileFormat.mSampleRate : 44100.0;
    const double expected = std::max(1.0, std::ceil(double(fileFrames) * 44100.0 / rate));

    std::vector<float> lo(size_t(columns), 0.0f), hi(size_t(columns), 0.0f);
    std::vector<bool> seen(size_t(columns), false);
    uint64_t position = 0;
    AudioFileLoaderOperation loader(path, AudioController::nonInterleaved16BitStereoAudioDescription());
    loader.audioReceiverBlock = [&](const AudioBufferList* audio, uint32_t frames) {
        const auto* left = static_cast<const int16_t*>(audio->mBuffers[0].mData);
        for (uint32_t k = 0; k < frames; ++k, ++position) {
            const size_t column = std::min(size_t(columns - 1), size_t(double(position) * columns / expected));
            const float v = left[k] / 32768.0f;
            if (!seen[column]) {
                lo[column] = hi[column] = v;
                seen[column] = true;
            } else {
                lo[column] = std::min(lo[column], v);
                hi[column] = std::max(hi[column], v);
            }
        }
    };
    loader.start();
    if (loader.error()) return false;
    waveform->frames = uint32_t(std::min<uint64_t>(position, UINT32_MAX));
    if (waveform->seconds() > kShortestWaveformSeconds) {
        // A file a little shorter than announced leaves its last columns empty:
        // they stay at zero rather than repeating a neighbour.
        waveform->minima = std::move(lo);
        waveform->maxima = std::move(hi);
    }
    return true;
}
