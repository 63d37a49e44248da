#pragma once
// The input trace's refresh clock on the window: a precise Qt timer at the
// trace's pace (every second frame of a 60 Hz screen).
#include <QTimer>

#include "recording/OscilloscopeLayer.h"

class TimerRefreshClock : public RefreshClock {
public:
    void start(double interval, std::function<void()> tick) override {
        tick_ = std::move(tick);
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(int(interval * 1000.0 + 0.5));
        QObject::disconnect(&timer_, nullptr, nullptr, nullptr);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            if (tick_) tick_();
        });
        timer_.start();
    }
    void stop() override {
        timer_.stop();
        tick_ = nullptr;
    }

private:
    QTimer timer_;
    std::function<void()> tick_;
};
