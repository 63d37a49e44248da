// The track editor screen offscreen: single, double and triple clicks on the
// squares with the real tap-count timing, two-finger taps, the keyboard, and
// the squares-number view coming and going without a QML warning.
#include <QPointingDevice>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <mutex>

#include "app/window/VisualTree.h"
#include "library/patterns/Tacter.h"
#include "screens/kit/KitSetup.h"
#include "tests/screens/trackeditor/TrackEditorHarness.h"

Q_IMPORT_QML_PLUGIN(Quillo_TrackEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_SoundEditorPlugin)

namespace {
// Every warning Qt prints while installed (QML binding errors among them).
class WarningRecorder {
public:
    WarningRecorder() {
        std::lock_guard lock(mutex());
        warnings().clear();
        previous() = qInstallMessageHandler(&WarningRecorder::record);
    }
    ~WarningRecorder() { qInstallMessageHandler(previous()); }
    QStringList seen() const {
        std::lock_guard lock(mutex());
        return warnings();
    }

private:
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg) {
            std::lock_guard lock(mutex());
            warnings().append(text);
        }
        if (previous()) previous()(type, context, text);
    }
    static std::mutex& mutex() {
        static std::mutex m;
        return m;
    }
    static QStringList& warnings() {
        static QStringList w;
        return w;
    }
    static QtMessageHandler& previous() {
        static QtMessageHandler h = nullptr;
        return h;
    }
};
}  // namespace

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
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
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
    // Two fingers put down together at these window points and lifted after a moment.
    void twoFingerTap(QPoint a, QPoint b) {
        QTest::touchEvent(&window, touchScreen).press(0, a).press(1, b);
        QTest::qWait(60);
        QTest::touchEvent(&window, touchScreen).release(0, a).release(1, b);
        QTest::qWait(20);
    }
    void oneFingerTap(QPoint at) {
        QTest::touchEvent(&window, touchScreen).press(0, at);
        QTest::qWait(40);
        QTest::touchEvent(&window, touchScreen).release(0, at);
    }
    double headsX() {
        QQuickItem* heads = findItem(screen, QStringLiteral("rowHeads"));
        EXPECT_NE(heads, nullptr);
        return heads ? heads->x() : 0;
    }
    // Longer than the heads' slide.
    static void slide() { QTest::qWait(450); }
    // Longer than the wait for a further tap.
    static void settle() { QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 150); }

    // One touch screen for the whole program: the window system keeps every device it is shown.
    static QPointingDevice* touchScreenDevice() {
        static QPointingDevice* const device = QTest::createTouchDevice(QInputDevice::DeviceType::TouchScreen);
        return device;
    }
    QPointingDevice* touchScreen = touchScreenDevice();
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

TEST_F(OneTrackViewTest, ATwoFingerTapSlidesTheRowHeadsOutAndIn) {
    Track* track = makeTrack(8, {0, 0});
    OneTrackVC* c = load(track);
    ASSERT_NE(c, nullptr);
    const double shownX = headsX();
    ASSERT_TRUE(c->leftVOnscreen());

    twoFingerTap(squareOnWindow(0, 1), squareOnWindow(1, 2));
    slide();
    EXPECT_FALSE(c->leftVOnscreen());
    EXPECT_LT(headsX(), shownX) << "the heads slid out of sight";
    settle();
    EXPECT_FALSE(Tacter::isSquareSelected(1, track->trackloops()[0])) << "two fingers are not a tap on a square";
    EXPECT_FALSE(Tacter::isSquareSelected(2, track->trackloops()[1]));

    twoFingerTap(QPoint(200, 300), QPoint(260, 420));
    slide();
    EXPECT_TRUE(c->leftVOnscreen());
    EXPECT_DOUBLE_EQ(headsX(), shownX);

    // Two fingers that stay down too long, and one finger, are no two-finger tap;
    // one finger still taps a square.
    QTest::touchEvent(&window, touchScreen).press(0, QPoint(200, 300)).press(1, QPoint(260, 420));
    QTest::qWait(900);
    QTest::touchEvent(&window, touchScreen).release(0, QPoint(200, 300)).release(1, QPoint(260, 420));
    oneFingerTap(squareOnWindow(1, 3));
    settle();
    EXPECT_TRUE(c->leftVOnscreen());
    EXPECT_TRUE(Tacter::isSquareSelected(3, track->trackloops()[1]));
}

// Adjusters whose controllers went before their items printed "Cannot read
// property ... of null" when a row was deleted.
TEST_F(OneTrackViewTest, DeletingRowsAndTheSquaresNumberViewPrintNoWarning) {
    Track* track = makeTrack(4, {0, 0, 0});
    OneTrackVC* c = load(track);
    ASSERT_NE(c, nullptr);
    WarningRecorder recorder;

    QTest::keyClick(&window, Qt::Key_Delete);
    ASSERT_TRUE(c->deleting());
    QQuickItem* rowTrash = findItem(screen, QStringLiteral("rowTrash1"));
    ASSERT_NE(rowTrash, nullptr);
    QTest::mouseClick(&window, Qt::LeftButton, {}, centerOf(rowTrash));
    QTest::keyClick(&window, Qt::Key_Delete);  // OK: the marked row goes
    QTest::qWait(400);
    EXPECT_EQ(c->rowCount(), 2);

    QQuickItem* button = findItem(screen, QStringLiteral("squaresNumButton"));
    ASSERT_NE(button, nullptr);
    c->setScrollX(c->contentWidth() - c->visibleWidth());  // the button after the last square in sight
    QTest::qWait(50);
    for (int round = 0; round < 2; ++round) {
        QTest::mouseClick(&window, Qt::LeftButton, {}, centerOf(button));
        QTest::qWait(400);  // enlarged
        ASSERT_TRUE(c->squaresNumOpen());
        QQuickItem* enlarged = findItem(screen, QStringLiteral("squaresNumView"));
        ASSERT_NE(enlarged, nullptr);
        ASSERT_TRUE(enlarged->isVisible());
        QTest::mouseClick(&window, Qt::LeftButton, {}, centerOf(enlarged));
        QTest::qWait(400);  // shrunk and gone
        EXPECT_FALSE(c->squaresNumOpen());
        EXPECT_FALSE(enlarged->isVisible());
    }
    EXPECT_TRUE(recorder.seen().isEmpty()) << recorder.seen().join(QLatin1Char('\n')).toStdString();
}

TEST_F(OneTrackViewTest, KeysPlayPauseCloseWhatIsOpenAndPressTrashOrOk) {
    Track* track = makeTrack(8, {0, 0});
    OneTrackVC* c = load(track);
    ASSERT_NE(c, nullptr);
    ASSERT_FALSE(c->paused());
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_TRUE(c->paused());
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_FALSE(c->paused());

    // A row with its colour chooser open: Escape closes the chooser, then the row.
    c->trackLoopPressed(0);
    ASSERT_NE(c->trackloopView(), nullptr);
    QQuickItem* colorButton = findItem(screen, QStringLiteral("rowColorButton"));
    ASSERT_NE(colorButton, nullptr);
    QTest::mouseClick(&window, Qt::LeftButton, {}, centerOf(colorButton));
    QTest::qWait(100);
    ASSERT_NE(c->trackloopView()->soundColorV(), nullptr);
    EXPECT_NE(findItem(window.contentItem(), QStringLiteral("soundColorView")), nullptr);
    QTest::keyClick(&window, Qt::Key_Escape);
    QTest::qWait(50);
    EXPECT_EQ(findItem(window.contentItem(), QStringLiteral("soundColorView")), nullptr);
    ASSERT_NE(c->trackloopView(), nullptr);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(c->trackloopView(), nullptr);

    // Delete starts deleting, Escape ends it; the squares number closes on Escape too.
    QTest::keyClick(&window, Qt::Key_Delete);
    EXPECT_TRUE(c->deleting());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(c->deleting());
    c->trackSquaresPressed();
    ASSERT_TRUE(c->squaresNumOpen());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(c->squaresNumOpen());
    EXPECT_FALSE(c->sqNumView()->fullscr());
}
