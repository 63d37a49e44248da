#pragma once
// Quillo's window on top of the application object. Launch runs in this
// order: settings, engine, built-in content (when the library holds no
// sound), player lists, the root screens, then the handed-over files.
// Needs a QGuiApplication. Main thread only.
#include <QQmlApplicationEngine>
#include <memory>

#include "app/AppDelegate.h"
#include "app/window/QtMainThread.h"
#include "app/window/RootScreens.h"
#include "app/window/WindowOptions.h"
#include "app/handoff/HandoffChannel.h"

class QQuickWindow;

class QuilloWindow {
public:
    explicit QuilloWindow(WindowOptions options, AudioDriverKind driver = AudioDriverKind::Automatic);
    ~QuilloWindow();
    QuilloWindow(const QuilloWindow&) = delete;
    QuilloWindow& operator=(const QuilloWindow&) = delete;

    // False when the library cannot be opened for writing (launchError()
    // says why) or the screens could not be built (the reason is logged).
    bool launch();
    const LibraryOpenError& launchError() const { return launchError_; }

    QQuickWindow* window() const { return window_; }
    RootScreens* rootScreens() const { return shell_.get(); }
    AppDelegate* app() const { return app_.get(); }

private:
    WindowOptions options_;
    QtMainThread mainThread_;
    std::unique_ptr<AppDelegate> app_;
    std::unique_ptr<RootScreens> shell_;
    // Files that a second quillo hands to this window (it holds the library).
    std::unique_ptr<HandoffChannel> handoff_;
    LibraryOpenError launchError_;
    // Declared last so that it goes first: the screens stop their players
    // while the application object still exists.
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;
};
