#pragma once
// Switches the microphone on or off away from the main thread: rebuilding the
// engine takes a moment (the device needs a pause), and the panel must open
// and close at once. One worker runs the switches in order; the newest
// request wins. The worker asks for the application when it runs, so a
// switch left pending at exit does nothing.
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

class InputSwitcher {
public:
    static InputSwitcher& shared();
    ~InputSwitcher();

    void switchInput(bool enabled);
    // Blocks until no switch is pending or running (recording waits for the
    // microphone, tests wait for the engine).
    void wait();

private:
    InputSwitcher() = default;
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<bool> pending_;
    bool busy_ = false;
    bool quit_ = false;
    std::thread worker_;
};
