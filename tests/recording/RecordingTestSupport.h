#pragma once
// Helpers of the recording tests: WAV files read and written with libsndfile,
// and a channel whose every frame says which frame it is.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <atomic>
#include <string>
#include <vector>

#include "engine/AudioChannel.h"

// A WAV file's frames as they are on disk (interleaved when stereo).
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
    EXPECT_NE(f, nullptr) << path << ": " << sf_strerror(nullptr);
    if (!f) return w;
    EXPECT_EQ(info.samplerate, 44100);
    EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    w.channels = info.channels;
    w.frames = info.frames;
    w.samples.resize(size_t(info.frames * info.channels));
    EXPECT_EQ(sf_readf_short(f, w.samples.data(), info.frames), info.frames);
    sf_close(f);
    return w;
}

// Writes a 16-bit stereo WAV file of the given channels.
inline void writeStereoWav(const std::string& path, const std::vector<int16_t>& left,
                           const std::vector<int16_t>& right) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(f, nullptr) << sf_strerror(nullptr);
    std::vector<int16_t> inter;
    inter.reserve(left.size() * 2);
    for (size_t k = 0; k < left.size(); ++k) {
        inter.push_back(left[k]);
        inter.push_back(right[k]);
    }
    ASSERT_EQ(sf_writef_short(f, inter.data(), sf_count_t(left.size())), sf_count_t(left.size()));
    sf_close(f);
}

// Frame n of the channel's own time: left n % 32768, right n / 32768, so a
// recording shows exactly which frames it holds.
inline int16_t frameLeft(int64_t n) { return int16_t(n % 32768); }
inline int16_t frameRight(int64_t n) { return int16_t(n / 32768); }

class FrameNumberChannel : public AudioChannel {
public:
    void render(AudioController*, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
        auto* r = static_cast<int16_t*>(audio->mBuffers[1].mData);
        const auto first = int64_t(time.mSampleTime);
        for (uint32_t k = 0; k < frames; ++k) {
            l[k] = frameLeft(first + k);
            r[k] = frameRight(first + k);
        }
        nextFrame.store(first + frames, std::memory_order_release);
    }
    // The frame the next render starts with.
    std::atomic<int64_t> nextFrame{0};
};
