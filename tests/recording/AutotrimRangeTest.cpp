// The trimming decision on plain buffers: thresholds, offsets and the
// exclusive end, with the default (1000, 10, 100) and export (0, 0, 0) settings.
#include <gtest/gtest.h>

#include <vector>

#include "recording/Autotrimmer.h"

namespace {

AutotrimRange trim(const std::vector<int16_t>& left, bool trimEnd, int16_t minVal = 1000, uint32_t startOff = 10,
                   uint32_t endOff = 100) {
    return autotrimRange(left.data(), uint32_t(left.size()), minVal, startOff, endOff, trimEnd);
}

std::vector<int16_t> silence(size_t n) { return std::vector<int16_t>(n, 0); }

TEST(AutotrimRange, NothingToFindKeepsEverything) {
    EXPECT_EQ(trim({}, true).length, 0u);
    auto quiet = silence(5000);
    quiet[100] = 1000;     // at the threshold: silence
    quiet[200] = -1000;
    quiet[300] = -32768;   // its magnitude wraps to -32768: silence
    for (bool trimEnd : {false, true}) {
        const auto r = trim(quiet, trimEnd);
        EXPECT_EQ(r.start, 0u);
        EXPECT_EQ(r.length, 5000u);
    }
}

TEST(AutotrimRange, StartKeepsTheOffsetButNeverGoesBeforeTheFirstFrame) {
    auto s = silence(5000);
    s[5] = 1001;  // just above the threshold
    auto r = trim(s, false);
    EXPECT_EQ(r.start, 0u);
    EXPECT_EQ(r.length, 5000u);

    s[5] = 0;
    s[2000] = -1001;
    r = trim(s, false);
    EXPECT_EQ(r.start, 1990u);
    EXPECT_EQ(r.length, 3010u);  // everything to the end
}

TEST(AutotrimRange, EndIsExclusive) {
    auto s = silence(5000);
    s[1000] = 5000;
    s[3000] = 5000;
    // endOff frames after the last sound, that frame itself not kept.
    auto r = trim(s, true);
    EXPECT_EQ(r.start, 990u);
    EXPECT_EQ(r.length, 3100u - 990u);
    // The last sound within endOff of the end: up to the last frame, excluded.
    s[4950] = 5000;
    r = trim(s, true);
    EXPECT_EQ(r.start + r.length, 4999u);
    // Export settings: from the first to just before the last non-zero sample,
    // or to the second-to-last frame when that sample is the very last.
    r = trim(s, true, 0, 0, 0);
    EXPECT_EQ(r.start, 1000u);
    EXPECT_EQ(r.length, 3950u);
    s[4999] = -1;
    r = trim(s, true, 0, 0, 0);
    EXPECT_EQ(r.start + r.length, 4999u);  // frame 4998 is the last one kept
}

TEST(AutotrimRange, RecordingShorterThanTheEndOffsetReachesPastItsEnd) {
    auto s = silence(50);
    s[20] = 2000;
    s[30] = 2000;
    const auto r = trim(s, true);
    EXPECT_EQ(r.start, 10u);
    EXPECT_EQ(r.start + r.length, 130u);  // frames 50..129 do not exist: silence
    // A single frame: nothing after the start to examine.
    EXPECT_EQ(trim({2000}, true).length, 1u);
    // An offset so large that the end would pass 2^32 frames stops there.
    EXPECT_EQ(trim(s, true, 1000, 10, UINT32_MAX).length, UINT32_MAX - 10u);
}

}  // namespace
