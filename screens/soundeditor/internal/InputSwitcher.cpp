#include "InputSwitcher.h"

#include "app/AppDelegate.h"

InputSwitcher& InputSwitcher::shared() {
    static InputSwitcher switcher;
    return switcher;
}

InputSwitcher::~InputSwitcher() {
    {
        std::lock_guard lock(mutex_);
        quit_ = true;
        pending_.reset();
    }
    changed_.notify_all();
    if (worker_.joinable()) worker_.join();
}

void InputSwitcher::switchInput(bool enabled) {
    {
        std::lock_guard lock(mutex_);
        pending_ = enabled;
        if (!worker_.joinable()) worker_ = std::thread([this] { run(); });
    }
    changed_.notify_all();
}

void InputSwitcher::wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !pending_ && !busy_; });
}

void InputSwitcher::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return quit_ || pending_; });
        if (quit_) return;
        const bool enabled = *pending_;
        pending_.reset();
        busy_ = true;
        lock.unlock();
        AppDelegate* app = AppDelegate::shared();
        if (app && app->audioController() && app->audioController()->inputEnabled() != enabled)
            app->setACInputEnabled(enabled);
        lock.lock();
        busy_ = false;
        changed_.notify_all();
    }
}
