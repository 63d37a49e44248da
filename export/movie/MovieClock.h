#pragma once
// The clock the view recorder's writer reads and sleeps on. Frame times are
// computed from it, so tests replace it with a clock they drive and check the
// times exactly.
class MovieClock {
public:
    virtual ~MovieClock() = default;
    // Seconds since 2001-01-01 00:00:00 UTC.
    virtual double now() = 0;
    virtual void sleepFor(double seconds) = 0;

    // Wall-clock time taken once, then advanced by a monotonic clock, so a
    // clock adjustment while filming cannot bend the frame times.
    static MovieClock& system();
};
