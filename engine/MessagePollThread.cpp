// The message poll thread: asks the main thread to collect responses and
// render-to-main messages while they flow (every buffer duration) or idles at
// 0.1 s, and posts the 1 s housekeeping.
#include <chrono>

#include "engine/AudioControllerRecords.h"

void AudioController::requestPoll() {
    if (pollPosted_.exchange(true)) return;
    std::weak_ptr<int> alive = alive_;
    mainThread_->post([this, alive] {
        if (alive.expired()) return;
        pollPosted_.store(false);
        pollForMessageResponses();
    });
}

void AudioController::pollThreadMain() {
    using clock = std::chrono::steady_clock;
    auto nextHousekeeping = clock::now() + std::chrono::seconds(1);
    bool recentTraffic = false;
    std::unique_lock<std::mutex> lock(pollMutex_);
    while (!pollCancelled_) {
        lock.unlock();
        const bool traffic = responses_.fillCount() > 0;
        if (traffic) requestPoll();
        if (clock::now() >= nextHousekeeping) {
            nextHousekeeping = clock::now() + std::chrono::seconds(1);
            std::weak_ptr<int> alive = alive_;
            mainThread_->post([this, alive] {
                if (!alive.expired()) housekeeping();
            });
        }
        // Idle: 0.1 s. While answers are due or messages flow: one buffer.
        double interval = 0.1;
        if (running() && (pendingResponses_.load() > 0 || traffic || recentTraffic)) {
            double buffer = offline_ ? 0.0 : 256.0 / 44100.0;
            interval = buffer > 0 ? buffer : 0.01;
        }
        recentTraffic = traffic;
        lock.lock();
        if (pollCancelled_) break;
        pollWake_.wait_for(lock, std::chrono::duration<double>(interval));
    }
}
