// The recorder's mixer: a lone source passes through untouched, two sources
// line up by sample time, and one that never delivers stops holding up the mix.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "engine/AudioController.h"
#include "recording/MixerBuffer.h"

namespace {

const void* const kMic = AudioController::inputSource();
const void* const kOut = AudioController::outputSource();

// Every frame distinct, the 16-bit extremes included.
struct Signal {
    std::vector<int16_t> left, right;
    Signal(uint32_t frames, uint32_t seed) {
        for (uint32_t k = 0; k < frames; ++k) {
            left.push_back(int16_t(int32_t((k * 7919u + seed) % 65536u) - 32768));
            right.push_back(int16_t(int32_t((k * 104729u + seed * 3u) % 65536u) - 32768));
        }
    }
    void enqueue(MixerBuffer& m, const void* source, uint32_t from, uint32_t frames, double time) {
        AudioBufferList list{2, {{1, frames * 2, left.data() + from}, {1, frames * 2, right.data() + from}}};
        m.enqueue(source, &list, frames, AudioTimeStamp{time, 0});
    }
};

// Dequeues everything ready into the mixer's own buffers, as the recorder does.
uint32_t drain(MixerBuffer& m, std::vector<int16_t>& left, std::vector<int16_t>& right) {
    uint32_t total = 0;
    AudioBufferList list{2, {{1, 0, nullptr}, {1, 0, nullptr}}};
    while (uint32_t n = m.dequeue(&list, 8192)) {
        const auto* l = static_cast<const int16_t*>(list.mBuffers[0].mData);
        const auto* r = static_cast<const int16_t*>(list.mBuffers[1].mData);
        left.insert(left.end(), l, l + n);
        right.insert(right.end(), r, r + n);
        total += n;
        list.mBuffers[0].mData = list.mBuffers[1].mData = nullptr;
    }
    return total;
}

TEST(MixerBuffer, LoneSourcePassesThroughBitExactlyAcrossTheRingEnd) {
    MixerBuffer m;
    const uint32_t total = 3 * MixerBuffer::kRingFrames + 1234;
    Signal s(total, 11);
    std::vector<int16_t> left, right;
    const uint32_t blocks[] = {256, 4096, 1, 1000, 333};  // none divides the ring
    for (uint32_t at = 0, i = 0; at < total; ++i) {
        const uint32_t n = std::min(blocks[i % 5], total - at);
        s.enqueue(m, kOut, at, n, 1000.0 + at);  // the engine's clock need not start at 0
        at += n;
        if (i % 3 == 0) drain(m, left, right);   // sometimes several blocks wait
    }
    drain(m, left, right);
    EXPECT_EQ(left, s.left);
    EXPECT_EQ(right, s.right);
}

TEST(MixerBuffer, TwoSourcesWaitForEachOtherLineUpByTimeAndClamp) {
    MixerBuffer m;
    m.expectSource(kMic);
    m.expectSource(kOut);
    Signal mic(2048, 1), out(2048, 2);
    mic.enqueue(m, kMic, 0, 256, 0);  // as in a render pass: the microphone first
    EXPECT_EQ(m.peekFrames(), 0u);
    out.enqueue(m, kOut, 0, 256, 100);  // the output starts 100 frames later
    mic.enqueue(m, kMic, 256, 1792, 256);
    out.enqueue(m, kOut, 256, 1692, 356);
    std::vector<int16_t> left, right;
    ASSERT_EQ(drain(m, left, right), 2048u);
    for (uint32_t k = 0; k < 2048; ++k) {
        ASSERT_EQ(left[k], std::clamp(mic.left[k] + (k >= 100 ? out.left[k - 100] : 0), -32768, 32767)) << k;
        ASSERT_EQ(right[k], std::clamp(mic.right[k] + (k >= 100 ? out.right[k - 100] : 0), -32768, 32767)) << k;
    }
    mic.enqueue(m, kMic, 0, 256, 1000);  // frames that already left are not mixed twice
    EXPECT_EQ(m.peekFrames(), 0u);
}

TEST(MixerBuffer, SourcesThatFallSilentHoldTheMixBackOnlySoLong) {
    // A microphone expected on a machine without one: it holds the output
    // back for one block, no more.
    MixerBuffer m;
    m.expectSource(kMic);
    m.expectSource(kOut);
    Signal out(20000, 5), mic(20000, 6);
    std::vector<int16_t> left, right;
    out.enqueue(m, kOut, 0, 256, 0);
    ASSERT_EQ(m.peekFrames(), 0u);
    ASSERT_EQ(m.peekFrames(true), 256u) << "the end of a recording waits for nobody";
    for (uint32_t at = 256; at + 256 <= 4410; at += 256) {
        out.enqueue(m, kOut, at, 256, at);
        ASSERT_EQ(drain(m, left, right), at == 256 ? 512u : 256u) << at;
    }
    EXPECT_TRUE(std::equal(left.begin(), left.end(), out.left.begin()));
    EXPECT_TRUE(std::equal(right.begin(), right.end(), out.right.begin()));

    // A microphone that delivered and then stopped holds the mix back until
    // it trails by kMaxLagFrames.
    MixerBuffer m2;
    mic.enqueue(m2, kMic, 0, 256, 0);
    out.enqueue(m2, kOut, 0, 256, 0);
    left.clear();
    right.clear();
    ASSERT_EQ(drain(m2, left, right), 256u);
    uint32_t at = 256;
    for (; at + 256 - 256 <= MixerBuffer::kMaxLagFrames; at += 256) {
        out.enqueue(m2, kOut, at, 256, at);
        ASSERT_EQ(drain(m2, left, right), 0u) << "still waiting at " << at;
    }
    out.enqueue(m2, kOut, at, 256, at);
    EXPECT_EQ(drain(m2, left, right), at);
}

}  // namespace
