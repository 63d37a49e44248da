// The recorder's mixer: lone sources pass through untouched, several sources
// line up by their sample times, and a source that never delivers does not
// hold the recording back.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "engine/AudioController.h"
#include "recording/MixerBuffer.h"

namespace {

const void* const kMic = AudioController::inputSource();
const void* const kOut = AudioController::outputSource();

// A stereo signal whose every frame is distinct, the 16-bit extremes included.
struct Signal {
    std::vector<int16_t> left, right;
    Signal(uint32_t frames, uint32_t seed) {
        for (uint32_t k = 0; k < frames; ++k) {
            left.push_back(int16_t(int32_t((k * 7919u + seed) % 65536u) - 32768));
            right.push_back(int16_t(int32_t((k * 104729u + seed * 3u) % 65536u) - 32768));
        }
    }
    Signal(uint32_t frames, int16_t l, int16_t r) : left(frames, l), right(frames, r) {}
};

void enqueue(MixerBuffer& m, const void* source, const Signal& s, uint32_t from, uint32_t frames, double time) {
    AudioBufferList list{};
    list.mNumberBuffers = 2;
    list.mBuffers[0] = {1, frames * 2, const_cast<int16_t*>(s.left.data() + from)};
    list.mBuffers[1] = {1, frames * 2, const_cast<int16_t*>(s.right.data() + from)};
    m.enqueue(source, &list, frames, AudioTimeStamp{time, 0});
}

// Dequeues everything ready, the way the recorder does (the mixer's own buffers).
uint32_t drain(MixerBuffer& m, std::vector<int16_t>& left, std::vector<int16_t>& right) {
    uint32_t total = 0;
    for (;;) {
        AudioBufferList list{};
        list.mNumberBuffers = 2;
        const uint32_t n = m.dequeue(&list, 8192);
        if (n == 0) return total;
        EXPECT_EQ(list.mBuffers[0].mDataByteSize, n * 2);
        const auto* l = static_cast<const int16_t*>(list.mBuffers[0].mData);
        const auto* r = static_cast<const int16_t*>(list.mBuffers[1].mData);
        left.insert(left.end(), l, l + n);
        right.insert(right.end(), r, r + n);
        total += n;
    }
}

TEST(MixerBuffer, LoneSourcePassesThroughBitExactlyAcrossTheRingEnd) {
    MixerBuffer m;
    const uint32_t total = 3 * MixerBuffer::kRingFrames + 1234;
    Signal s(total, 11);
    std::vector<int16_t> left, right;
    // Block sizes that do not divide the ring, the largest a render slice gives.
    const uint32_t blocks[] = {256, 4096, 1, 1000, 333};
    uint32_t at = 0;
    for (int i = 0; at < total; ++i) {
        const uint32_t n = std::min(blocks[i % 5], total - at);
        enqueue(m, kOut, s, at, n, 1000.0 + at);  // the engine's clock need not start at 0
        at += n;
        if (i % 3 == 0) drain(m, left, right);   // sometimes several blocks wait
    }
    drain(m, left, right);
    ASSERT_EQ(left.size(), total);
    EXPECT_EQ(left, s.left);
    EXPECT_EQ(right, s.right);

    // Into the caller's own buffers: no more than they hold.
    enqueue(m, kOut, s, 0, 300, 1000.0 + total);
    std::vector<int16_t> l(100), r(100);
    AudioBufferList list{};
    list.mNumberBuffers = 2;
    list.mBuffers[0] = {1, 200, l.data()};
    list.mBuffers[1] = {1, 200, r.data()};
    EXPECT_EQ(m.dequeue(&list, 8192), 100u);
    EXPECT_EQ(l, std::vector<int16_t>(s.left.begin(), s.left.begin() + 100));
    EXPECT_EQ(m.peekFrames(), 200u);
}

TEST(MixerBuffer, TwoSourcesWaitForEachOtherLineUpByTimeAndClamp) {
    MixerBuffer m;
    m.expectSource(kMic);
    m.expectSource(kOut);
    Signal mic(2048, 1), out(2048, 2);
    // As in a render slice: the microphone's block comes first and must wait.
    enqueue(m, kMic, mic, 0, 256, 0);
    EXPECT_EQ(m.peekFrames(), 0u);
    // The output lags 100 frames behind: its first block starts at time 100.
    enqueue(m, kOut, out, 0, 256, 100);
    EXPECT_EQ(m.peekFrames(), 256u);
    enqueue(m, kMic, mic, 256, 1792, 256);
    enqueue(m, kOut, out, 256, 1692, 356);
    std::vector<int16_t> left, right;
    EXPECT_EQ(drain(m, left, right), 2048u);
    for (uint32_t k = 0; k < 2048; ++k) {
        const int32_t wantL = int32_t(mic.left[k]) + (k >= 100 ? out.left[k - 100] : 0);
        const int32_t wantR = int32_t(mic.right[k]) + (k >= 100 ? out.right[k - 100] : 0);
        ASSERT_EQ(left[k], int16_t(std::clamp(wantL, -32768, 32767))) << k;
        ASSERT_EQ(right[k], int16_t(std::clamp(wantR, -32768, 32767))) << k;
    }

    // A block for frames that already left is dropped, not mixed twice.
    Signal loud(256, 30000, -30000);
    enqueue(m, kMic, loud, 0, 256, 1000);
    EXPECT_EQ(m.peekFrames(), 0u);
}

TEST(MixerBuffer, ASourceThatNeverDeliversStopsHoldingTheMixBack) {
    // A recording of microphone and output on a machine without a microphone.
    MixerBuffer m;
    m.expectSource(kMic);
    m.expectSource(kOut);
    Signal out(20000, 5);
    std::vector<int16_t> left, right;
    uint32_t at = 0;
    for (; at + 256 <= MixerBuffer::kMaxLagFrames; at += 256) {
        enqueue(m, kOut, out, at, 256, at);
        EXPECT_EQ(drain(m, left, right), 0u) << "still waiting at " << at;
    }
    for (; at + 256 <= 20000; at += 256) enqueue(m, kOut, out, at, 256, at), drain(m, left, right);
    ASSERT_EQ(left.size(), at);
    EXPECT_TRUE(std::equal(left.begin(), left.end(), out.left.begin()));
    EXPECT_TRUE(std::equal(right.begin(), right.end(), out.right.begin()));
}

TEST(MixerBuffer, MonoSourceFeedsBothChannels) {
    MixerBuffer m;
    Signal s(512, 9);
    AudioBufferList list{};
    list.mNumberBuffers = 1;
    list.mBuffers[0] = {1, 1024, s.left.data()};
    m.enqueue(kMic, &list, 512, AudioTimeStamp{0, 0});
    std::vector<int16_t> left, right;
    EXPECT_EQ(drain(m, left, right), 512u);
    EXPECT_EQ(left, s.left);
    EXPECT_EQ(right, s.left);
}

}  // namespace
