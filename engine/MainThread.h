#pragma once
// The application's main thread as the engine sees it: a place to post work
// to, and a way to tell whether the caller is on it. The Qt application
// provides its own implementation; the command-line tool and the tests use
// RunLoopMainThread, a queue that its owner drains.
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

class MainThread {
public:
    virtual ~MainThread() = default;
    // Runs `task` on the main thread later. Callable from any thread except the
    // render thread.
    virtual void post(std::function<void()> task) = 0;
    virtual bool isCurrent() const = 0;
};

class RunLoopMainThread : public MainThread {
public:
    // The constructing thread is the main thread until setOwnerThread says otherwise.
    RunLoopMainThread();
    void setOwnerThread(std::thread::id owner);

    void post(std::function<void()> task) override;
    bool isCurrent() const override;

    // Runs every task posted so far (and those they post); returns how many ran.
    int runPending();
    // Runs tasks as they arrive until `done()` answers true or `timeout` passes;
    // answers done() at the end.
    bool runUntil(const std::function<bool()>& done, std::chrono::steady_clock::duration timeout);

private:
    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::function<void()>> tasks_;
    std::thread::id owner_;
};
