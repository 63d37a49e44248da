// The trimming decision on plain buffers, with the microphone settings
// (threshold 1000, 10 frames before, 100 after) unless a case says otherwise.
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "recording/Autotrimmer.h"

namespace {

struct Case {
    const char* what;
    uint32_t frames;
    std::map<uint32_t, int16_t> samples;  // left channel; the rest is silence
    bool trimEnd;
    uint32_t start, end;                  // the kept range [start, end)
    int16_t minVal = 1000;
    uint32_t startOff = 10;
    uint32_t endOff = 100;
};

TEST(AutotrimRange, KeepsFromBeforeTheFirstSoundToJustBeforeTheEnd) {
    const Case cases[] = {
        {"empty", 0, {}, true, 0, 0},
        {"silent: the threshold itself and -32768 are silence", 5000, {{100, 1000}, {200, -1000}, {300, -32768}}, true, 0, 5000},
        {"sound near the start: not before frame 0", 5000, {{5, 1001}}, false, 0, 5000},
        {"start only", 5000, {{2000, -1001}, {3000, 5000}}, false, 1990, 5000},
        {"end offset after the last sound, end excluded", 5000, {{1000, 5000}, {3000, 5000}}, true, 990, 3100},
        {"last sound near the end: up to the last frame, excluded", 5000, {{1000, 5000}, {4950, 5000}}, true, 990, 4999},
        {"export: first to last non-zero sample", 5000, {{1000, 1}, {4950, -1}}, true, 1000, 4950, 0, 0, 0},
        {"export: non-zero last frame", 5000, {{1000, 1}, {4999, -1}}, true, 1000, 4999, 0, 0, 0},
        {"shorter than the end offset: past the end", 50, {{20, 2000}, {30, 2000}}, true, 10, 130},
        {"a single frame", 1, {{0, 2000}}, true, 0, 1},
        {"an end past 2^32 frames stops there", 50, {{20, 2000}, {30, 2000}}, true, 10, UINT32_MAX, 1000, 10, UINT32_MAX},
    };
    for (const Case& c : cases) {
        std::vector<int16_t> left(c.frames, 0);
        for (auto [at, s] : c.samples) left[at] = s;
        const AutotrimRange r = autotrimRange(left.data(), c.frames, c.minVal, c.startOff, c.endOff, c.trimEnd);
        EXPECT_EQ(r.start, c.start) << c.what;
        EXPECT_EQ(uint64_t(r.start) + r.length, c.end) << c.what;
    }
}

}  // namespace
