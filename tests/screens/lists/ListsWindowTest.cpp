// The three lists in the real window on the built-in library, driven with
// synthetic taps and swipes: switching lists from the side menu, playing in
// place, and deleting a user loop by swiping its row.
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include "app/AppDelegate.h"
#include "engine/AudioFilePlayer.h"
#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "playback/Trackplayer.h"
#include "screens/lists/LoopsTVC.h"
#include "screens/lists/SoundsTVC.h"
#include "screens/lists/TracksTVC.h"
#include "tests/app/WindowFixture.h"

Q_IMPORT_QML_PLUGIN(Quillo_AppPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_KitPlugin)

namespace {

class ListsWindowTest : public WindowFixture {
protected:
    void SetUp() override { launch(); }

    template <class List>
    List* list() { return top()->findChild<List*>(); }
    void showList(int menuRow) {
        QMetaObject::invokeMethod(findItem(window->contentItem(), "globalMenu"), "choose", Q_ARG(QVariant, menuRow));
        // The new list slides in and the top screen slides back over the menu.
        QQuickItem* stack = findItem(window->contentItem(), "screenStack");
        QQuickItem* sliding = findItem(window->contentItem(), "slidingContainer");
        ASSERT_TRUE(QTest::qWaitFor([&] {
            return !stack->property("busy").toBool() && qAbs(sliding->property("topX").toDouble()) < 0.5;
        }, 3000));
    }
    int rowNamed(BaseTVC* list, const QString& name) {
        for (int k = 0; k < list->rows()->count(); ++k)
            if (list->rows()->rowAt(k)->name == name) return k;
        return -1;
    }
    int firstItemRow(BaseTVC* list) {
        for (int k = 0; k < list->rows()->count(); ++k)
            if (!list->rows()->rowAt(k)->isFolder) return k;
        return -1;
    }
    QQuickItem* rowItem(const char* table, int row) {
        return WindowFixture::rowItem(findItem(top(), QString::fromLatin1(table)), row);
    }
    void tapPlay(const char* table, int row) {
        QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(findItem(rowItem(table, row), "playButton")));
    }
};

TEST_F(ListsWindowTest, TracksAndSoundsPlayInPlaceOneAtATime) {
    showList(0);
    auto* tracks = list<TracksTVC>();
    ASSERT_NE(tracks, nullptr);
    EXPECT_EQ(top()->property("title").toString(), "Tracks");
    const int first = firstItemRow(tracks);
    ASSERT_GE(first, 0);
    ASSERT_NE(tracks->rows()->rowAt(first + 1), nullptr);

    tapPlay("tracksTable", first);
    EXPECT_EQ(tracks->playingRow(), first);
    ASSERT_EQ(quillo->app()->trackplayers().size(), 1u);
    tapPlay("tracksTable", first + 1);
    EXPECT_EQ(tracks->playingRow(), first + 1);
    EXPECT_EQ(quillo->app()->trackplayers().size(), 1u);
    tapPlay("tracksTable", first + 1);
    EXPECT_EQ(tracks->playingRow(), -1);
    EXPECT_TRUE(quillo->app()->trackplayers().empty());

    // Space plays the row last pressed and stops it again.
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_EQ(tracks->playingRow(), first + 1);
    EXPECT_EQ(quillo->app()->trackplayers().size(), 1u);
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_EQ(tracks->playingRow(), -1);
    // The arrows move the current row, whatever was clicked last.
    QQuickItem* table = findItem(top(), "tracksTable");
    QTest::keyClick(window, Qt::Key_Up);
    EXPECT_EQ(table->property("currentIndex").toInt(), first);

    showList(2);
    auto* sounds = list<SoundsTVC>();
    ASSERT_NE(sounds, nullptr);
    const int sound = firstItemRow(sounds);
    ASSERT_GE(sound, 0);
    tapPlay("soundsTable", sound);
    EXPECT_EQ(sounds->playingRow(), sound);
    ASSERT_NE(quillo->app()->oneshot, nullptr);
    // The one-shot finishes by itself and the row's button comes back.
    EXPECT_TRUE(QTest::qWaitFor([&] { return sounds->playingRow() == -1; }, 10000));
    EXPECT_EQ(quillo->app()->oneshot, nullptr);
}

TEST_F(ListsWindowTest, SwipingAUserLoopOpenAndTappingDeleteRemovesItFromTheStore) {
    CoreDater& dater = CoreDater::shIns();
    Loop* mine = dater.createEmptyUsersLoop();
    ASSERT_NE(mine, nullptr);
    const QString name = QString::fromStdString(mine->name());
    dater.save();
    auto* loops = list<LoopsTVC>();
    loops->setItemsAndReloadTable();
    const int row = rowNamed(loops, name);
    ASSERT_GE(row, 0);

    // Drag the row to the left to show its delete button, then tap it.
    QQuickItem* item = rowItem("loopsTable", row);
    ASSERT_NE(item, nullptr);
    const QPoint start = item->mapToScene(QPointF(item->width() * 0.8, item->height() / 2)).toPoint();
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    for (int step = 1; step <= 10; ++step) {
        QTest::mouseMove(window, start - QPoint(step * 20, 0), 16);
    }
    QTest::mouseRelease(window, Qt::LeftButton, {}, start - QPoint(200, 0), 16);
    QQuickItem* remove = findItem(item, "deleteRowButton");
    ASSERT_NE(remove, nullptr);
    QObject* swipe = item->property("swipe").value<QObject*>();
    ASSERT_NE(swipe, nullptr);
    // The row settles open with its buttons showing.
    ASSERT_TRUE(QTest::qWaitFor([&] { return swipe->property("complete").toBool(); }, 2000));
    QTest::qWait(100);
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(remove));

    EXPECT_EQ(rowNamed(loops, name), -1);
    EXPECT_EQ(dater.findEntity("Loop", name.toStdString()), nullptr);
}

TEST_F(ListsWindowTest, ASoundImportedWhileTheSoundsListIsOnTopShowsAtOnce) {
    showList(2);
    auto* sounds = list<SoundsTVC>();
    ASSERT_NE(sounds, nullptr);
    CoreDater::shIns().createRecordedSound("Doorbell", 10, "Imported");
    CoreDater::shIns().save();
    EXPECT_EQ(rowNamed(sounds, "Doorbell"), -1);
    quillo->app()->reloadSoundsList();
    EXPECT_GE(rowNamed(sounds, "Doorbell"), 0);
}

}  // namespace

int main(int argc, char** argv) { return runWindowTests(argc, argv); }
