// The trimming decision, kept apart from files so it can be checked on plain buffers.
#include <algorithm>
#include <cstdlib>

#include "recording/Autotrimmer.h"

namespace {

// |s| computed in 32 bits and read back as 16 bits: -32768 stays -32768.
inline int16_t magnitude(int16_t s) { return static_cast<int16_t>(std::abs(int32_t(s))); }

}  // namespace

AutotrimRange autotrimRange(const int16_t* left, uint32_t frames, int16_t minVal, uint32_t startOff, uint32_t endOff,
                            bool trimEnd) {
    const uint32_t n = frames;
    AutotrimRange r{0, n};
    if (n == 0) return r;

    for (uint32_t i = 0; i < n; ++i) {
        if (minVal < magnitude(left[i])) {
            const uint32_t back = std::min(i, startOff);
            r.start = i - back;
            r.length = back + n - i;
            break;
        }
    }
    if (!trimEnd) return r;

    const uint32_t last = n - 1;
    if (last <= r.start) return r;
    for (uint32_t j = last; j > r.start; --j) {
        if (minVal < magnitude(left[j])) {
            const uint32_t limit = n - 1 - endOff;  // wraps when endOff >= n
            uint32_t end = n - 1;
            if (j < limit) {
                const uint64_t far = uint64_t(j) + endOff;
                end = far > UINT32_MAX ? UINT32_MAX : uint32_t(far);
            }
            r.length = end - r.start;  // the end frame is not kept
            break;
        }
    }
    return r;
}
