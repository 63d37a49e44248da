#pragma once
// A rational media time: value / timescale seconds, as movie containers count
// time. Frame times are built from integer ticks so that the rules that place
// frames are exact and testable, not floating-point approximations.
#include <cstdint>

struct MediaTime {
    int64_t value = 0;
    int32_t timescale = 600;

    static constexpr MediaTime make(int64_t value, int32_t timescale) { return MediaTime{value, timescale}; }
    static constexpr MediaTime zero() { return MediaTime{0, 600}; }

    double seconds() const { return timescale > 0 ? static_cast<double>(value) / timescale : 0.0; }
    // The time in `scale` ticks, rounded to the nearest tick.
    int64_t ticksIn(int32_t scale) const;

    // Sum in the finer of the two timescales (exact when one divides the other).
    friend MediaTime operator+(MediaTime a, MediaTime b);
    friend bool operator==(MediaTime a, MediaTime b) { return a.value * b.timescale == b.value * a.timescale; }
    friend bool operator<(MediaTime a, MediaTime b) { return a.value * b.timescale < b.value * a.timescale; }
};

inline int64_t MediaTime::ticksIn(int32_t scale) const {
    if (timescale == scale) return value;
    if (timescale <= 0) return 0;
    // Round half away from zero; values here are never negative.
    const __int128 num = static_cast<__int128>(value) * scale;
    return static_cast<int64_t>((num + timescale / 2) / timescale);
}

inline MediaTime operator+(MediaTime a, MediaTime b) {
    if (a.timescale == b.timescale) return MediaTime{a.value + b.value, a.timescale};
    const int32_t scale = a.timescale > b.timescale ? a.timescale : b.timescale;
    return MediaTime{a.ticksIn(scale) + b.ticksIn(scale), scale};
}
