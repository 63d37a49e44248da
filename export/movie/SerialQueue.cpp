#include "export/movie/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace {
thread_local std::string tCurrentLabel;
}

struct SerialQueue::State {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> jobs;
    bool closing = false;
    std::thread thread;
};

SerialQueue::SerialQueue(std::string label) : label_(std::move(label)), state_(std::make_shared<State>()) {
    // The thread shares the state, so it can outlive the queue object.
    state_->thread = std::thread([state = state_, label = label_] {
        tCurrentLabel = label;
        // Thread names are limited to 15 characters; the full label stays in currentLabel().
        pthread_setname_np(pthread_self(), label.substr(0, 15).c_str());
        std::unique_lock<std::mutex> lock(state->mutex);
        for (;;) {
            state->wake.wait(lock, [&] { return state->closing || !state->jobs.empty(); });
            if (state->jobs.empty()) return;
            std::function<void()> job = std::move(state->jobs.front());
            state->jobs.pop_front();
            lock.unlock();
            job();
            job = nullptr;  // captured objects are released on this thread, before the next job
            lock.lock();
        }
    });
}

SerialQueue::~SerialQueue() {
    {
        std::lock_guard<std::mutex> lock(state_->mutex);
        state_->closing = true;
    }
    state_->wake.notify_one();
    if (state_->thread.get_id() == std::this_thread::get_id()) {
        state_->thread.detach();
    } else {
        state_->thread.join();
    }
}

void SerialQueue::async(std::function<void()> job) {
    {
        std::lock_guard<std::mutex> lock(state_->mutex);
        state_->jobs.push_back(std::move(job));
    }
    state_->wake.notify_one();
}

std::string SerialQueue::currentLabel() { return tCurrentLabel; }
