#include "export/movie/MovieClock.h"

#include <chrono>
#include <thread>

#include "library/util/Dates.h"

namespace {

class SystemMovieClock final : public MovieClock {
public:
    double now() override {
        return anchorDate_ + std::chrono::duration<double>(std::chrono::steady_clock::now() - anchor_).count();
    }
    void sleepFor(double seconds) override {
        if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }

private:
    std::chrono::steady_clock::time_point anchor_ = std::chrono::steady_clock::now();
    double anchorDate_ = nowSinceReferenceDate();
};

}  // namespace

MovieClock& MovieClock::system() {
    static SystemMovieClock clock;
    return clock;
}
