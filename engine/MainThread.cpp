#include "engine/MainThread.h"

RunLoopMainThread::RunLoopMainThread() : owner_(std::this_thread::get_id()) {}

void RunLoopMainThread::setOwnerThread(std::thread::id owner) {
    std::lock_guard<std::mutex> lock(mutex_);
    owner_ = owner;
}

void RunLoopMainThread::post(std::function<void()> task) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    arrived_.notify_all();
}

bool RunLoopMainThread::isCurrent() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return owner_ == std::this_thread::get_id();
}

int RunLoopMainThread::runPending() {
    int ran = 0;
    for (;;) {
        std::function<void()> task;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            if (tasks_.empty()) return ran;
            task = std::move(tasks_.front());
            tasks_.pop_front();
        }
        task();
        ++ran;
    }
}

bool RunLoopMainThread::runUntil(const std::function<bool()>& done, std::chrono::steady_clock::duration timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        runPending();
        if (done()) return true;
        std::unique_lock<std::mutex> lock(mutex_);
        if (tasks_.empty()) {
            // Wake at least every 10 ms: `done` may depend on other threads.
            auto wake = std::min(deadline, std::chrono::steady_clock::now() + std::chrono::milliseconds(10));
            arrived_.wait_until(lock, wake);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            lock.unlock();
            runPending();
            return done();
        }
    }
}
