#pragma once
// Library dates are seconds since 2001-01-01 00:00:00 UTC.
#include <atomic>
#include <chrono>

constexpr double kReferenceDateUnixSeconds = 978307200.0;

// The current time as a library date. Successive calls never return the same
// value (a microsecond apart at least), so items created in one burst keep
// their creation order in date-sorted lists.
inline double nowSinceReferenceDate() {
    using namespace std::chrono;
    static std::atomic<double> last{0.0};
    double now = duration<double>(system_clock::now().time_since_epoch()).count() - kReferenceDateUnixSeconds;
    double prev = last.load(std::memory_order_relaxed);
    double next;
    do {
        next = now > prev + 1e-6 ? now : prev + 1e-6;
    } while (!last.compare_exchange_weak(prev, next, std::memory_order_relaxed));
    return next;
}
