#pragma once
// Shared by the recording tests: WAV files through libsndfile, and a channel
// whose every frame says which frame it is.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <atomic>
#include <string>
#include <vector>

#include "engine/AudioChannel.h"

// A 16-bit 44.1 kHz WAV file's frames as stored (interleaved when stereo).
struct WavContents {
    int channels = 0;
    int64_t frames = 0;
    std::vector<int16_t> samples;
    int16_t at(int64_t frame, int channel) const { return samples[size_t(frame * channels + channel)]; }
};

inline WavContents readWav(const std::string& path) {
    WavContents w;
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_TRUE(f && info.samplerate == 44100 && info.format == (SF_FORMAT_WAV | SF_FORMAT_PCM_16)) << path;
    if (!f) return w;
    w.channels = info.channels;
    w.frames = info.frames;
    w.samples.resize(size_t(info.frames * info.channels));
    sf_readf_short(f, w.samples.data(), info.frames);
    sf_close(f);
    return w;
}

inline void writeStereoWav(const std::string& path, const std::vector<int16_t>& left,
                           const std::vector<int16_t>& right) {
    SF_INFO info{0, 44100, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0, 0};
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(f, nullptr) << sf_strerror(nullptr);
    std::vector<int16_t> inter;
    for (size_t k = 0; k < left.size(); ++k) inter.insert(inter.end(), {left[k], right[k]});
    sf_writef_short(f, inter.data(), sf_count_t(left.size()));
    sf_close(f);
}

// Frame n of the channel's own time: left n % 32768, right n / 32768.
inline int16_t frameLeft(int64_t n) { return int16_t(n % 32768); }
inline int16_t frameRight(int64_t n) { return int16_t(n / 32768); }

class FrameNumberChannel : public AudioChannel {
public:
    void render(AudioController*, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        const auto first = int64_t(time.mSampleTime);
        for (uint32_t k = 0; k < frames; ++k) {
            static_cast<int16_t*>(audio->mBuffers[0].mData)[k] = frameLeft(first + k);
            static_cast<int16_t*>(audio->mBuffers[1].mData)[k] = frameRight(first + k);
        }
        nextFrame.store(first + frames, std::memory_order_release);
    }
    std::atomic<int64_t> nextFrame{0};  // the first frame of the next render
};
