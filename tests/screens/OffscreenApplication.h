#pragma once
// One offscreen Qt GUI application for a whole test program (QML, images,
// timers), with a private runtime folder. Register it once:
//   ::testing::AddGlobalTestEnvironment(new OffscreenApplication);
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTemporaryDir>
#include <memory>

class OffscreenApplication : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
        static int argc = 1;
        static char name[] = "quillo-tests";
        static char* argv[] = {name, nullptr};
        app = std::make_unique<QGuiApplication>(argc, argv);
    }
    void TearDown() override { app.reset(); }

    QTemporaryDir runtime;
    std::unique_ptr<QGuiApplication> app;
};
