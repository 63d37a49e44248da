#pragma once
// A named serial queue: jobs run one after another, in the order they were
// queued, on one thread of its own. The movie writers encode on these so that
// neither the main thread nor the audio render thread ever does.
#include <functional>
#include <memory>
#include <string>

class SerialQueue {
public:
    explicit SerialQueue(std::string label);
    // Lets the queued jobs run to their end. Destroyed from one of its own
    // jobs, the queue lets its thread finish on its own instead.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    void async(std::function<void()> job);
    const std::string& label() const { return label_; }

    // The label of the queue running the calling thread; empty elsewhere.
    static std::string currentLabel();

private:
    struct State;
    std::string label_;
    std::shared_ptr<State> state_;
};
