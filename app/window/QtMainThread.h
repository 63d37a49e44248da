#pragma once
// The engine's main thread in the window: work posted from the engine's poll
// thread runs on the Qt event loop. Never called from the render thread.
#include <QObject>

#include "engine/MainThread.h"

class QtMainThread final : public MainThread {
public:
    QtMainThread();  // on the thread that runs the event loop
    void post(std::function<void()> task) override;
    bool isCurrent() const override;

private:
    QObject context_;  // lives on the main thread; queued tasks run in its thread
};
