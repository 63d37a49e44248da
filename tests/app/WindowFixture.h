#pragma once
// The real quillo window offscreen on a new library with the null audio
// device, for tests that drive screens with synthetic input; and the main()
// such a test program runs under.
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

#include "app/window/QuilloWindow.h"
#include "app/window/VisualTree.h"
#include "tests/library/TestStore.h"

class WindowFixture : public ::testing::Test {
protected:
    void launch(QStringList files = {}) {
        WindowOptions options;
        options.libraryFolder = QString::fromStdString(library.path());
        options.settingsFile = QString::fromStdString(library.file("settings.ini"));
        options.files = std::move(files);
        quillo = std::make_unique<QuilloWindow>(options, AudioDriverKind::Null);
        ASSERT_TRUE(quillo->launch());
        window = quillo->window();
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    }
    void TearDown() override {
        quillo.reset();
        // Let the deletions Qt deferred run before the next test and the leak check.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The named item anywhere in the window (a failure when there is none).
    QQuickItem* find(const char* name) {
        QQuickItem* item = findItem(window->contentItem(), QString::fromLatin1(name));
        EXPECT_NE(item, nullptr) << name;
        return item;
    }
    // The screen on top of the window's stack.
    QQuickItem* top() { return find("screenStack")->property("currentItem").value<QQuickItem*>(); }
    // A table's delegate for `row`, scrolled into view.
    QQuickItem* rowItem(QQuickItem* table, int row) {
        QMetaObject::invokeMethod(table, "positionViewAtIndex", Q_ARG(int, row), Q_ARG(int, 0));
        QQuickItem* item = nullptr;
        QMetaObject::invokeMethod(table, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, item), Q_ARG(int, row));
        return item;
    }

    TempDir library;
    std::unique_ptr<QuilloWindow> quillo;
    QQuickWindow* window = nullptr;
};

// Offscreen, with private runtime, settings and log folders.
inline int runWindowTests(int argc, char** argv) {
    TempDir runtime;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtime.path()));
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(runtime.path() + "/config"));
    qputenv("XDG_STATE_HOME", QByteArray::fromStdString(runtime.path() + "/state"));
    QGuiApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
