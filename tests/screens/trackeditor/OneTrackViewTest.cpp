// The track editor screen offscreen: single, double and triple clicks on the
// squares with the real tap-count timing, checked in the store and the player.
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include "app/window/VisualTree.h"
#include "library/patterns/Tacter.h"
#include "screens/kit/KitSetup.h"
#include "tests/screens/trackeditor/TrackEditorHarness.h"

Q_IMPORT_QML_PLUGIN(Quillo_TrackEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)

class OneTrackViewTest : public TrackEditorHarness {
protected:
    void TearDown() override {
        delete screen;
        TrackEditorHarness::TearDown();
    }
    OneTrackVC* load(Track* track) {
        quillo::kit::addTo(engine);
        window.resize(390, 844);
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Quillo/TrackEditor/OneTrackView.qml")));
        if (!component.isReady()) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        screen = qobject_cast<QQuickItem*>(
            component.createWithInitialProperties({{"trackName", QString::fromStdString(track->name())}}));
        if (!screen) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        QObject* framr = engine.singletonInstance<QObject*>(qmlTypeId("Quillo.Kit", 1, 0, "Framr"));
        framr->setProperty("window", QVariant::fromValue(&window));
        screen->setParentItem(window.contentItem());
        screen->setSize(QSizeF(390, 844));
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        return screen->property("controller").value<OneTrackVC*>();
    }
    // Where a square is on the window.
    QPoint squareOnWindow(int row, int square) {
        QQuickItem* content = findItem(screen, QStringLiteral("squaresContent"));
        EXPECT_NE(content, nullptr);
        return content ? content->mapToScene(centreOf(row, square)).toPoint() : QPoint();
    }
    void clicks(QPoint at, int n) {
        for (int i = 0; i < n; ++i) QTest::mouseClick(&window, Qt::LeftButton, {}, at, 40);
    }
    // Longer than the wait for a further tap.
    static void settle() { QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 150); }

    QQmlEngine engine;
    QQuickWindow window;
    QQuickItem* screen = nullptr;
};

TEST_F(OneTrackViewTest, ClicksOnTheSquaresCountAsOneTwoOrThreeTaps) {
    Track* track = makeTrack(8, {0, Tacter::tacts("1---------------")});
    OneTrackVC* c = load(track);
    ASSERT_NE(c, nullptr);
    ASSERT_TRUE(c->isPlaying());
    TrackLoop* row0 = track->trackloops()[0];
    TrackLoop* row1 = track->trackloops()[1];

    // One click: the square toggles once the wait for a second is over, not before.
    clicks(squareOnWindow(0, 2), 1);
    EXPECT_FALSE(Tacter::isSquareSelected(2, row0));
    settle();
    EXPECT_TRUE(Tacter::isSquareSelected(2, row0));

    // Two clicks: play from that square, squares unchanged.
    c->pausePressed();
    ASSERT_TRUE(c->paused());
    clicks(squareOnWindow(0, 3), 2);
    settle();
    EXPECT_FALSE(c->paused());
    EXPECT_TRUE(c->isPlaying());
    EXPECT_EQ(c->playingSq(), 3);
    EXPECT_FALSE(Tacter::isSquareSelected(3, row0));

    // Three clicks on a selected square: the row is cleared at once.
    clicks(squareOnWindow(1, 0), 3);
    for (uint64_t s = 0; s < 8; ++s) EXPECT_FALSE(Tacter::isSquareSelected(s, row1)) << s;
    settle();  // and nothing more comes of them
    EXPECT_FALSE(Tacter::isSquareSelected(0, row1));
    EXPECT_TRUE(Tacter::isSquareSelected(2, row0));
}
