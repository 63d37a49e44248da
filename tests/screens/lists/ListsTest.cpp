// The lists' decisions on a real store: which rows may be swiped for what,
// what deleting, copying and renaming leave in the store, and track lengths.
#include <QCoreApplication>
#include <QSignalSpy>

#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "screens/lists/LoopsTVC.h"
#include "screens/lists/SoundsTVC.h"
#include "screens/lists/TracksTVC.h"
#include "tests/library/TestStore.h"

namespace {

class ListsTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        dater().createPreloadedSound("Kick", 3, "Built-in sounds", "Studio");
        snare = dater().createRecordedSound("Snare", 40, "My sounds");
        builtIn = dater().createPreloadedLoop("Easy", 100, {dater().createInstrumentWithSound("Kick", 0x8888)},
                                              "Built-in loops", "Studio");
        mine = dater().createPreloaded(false, "Mine", 120, {dater().createInstrumentWithSound("Snare", 0x0808)},
                                       "My loops", "");
        dater().save();
    }
    static int rowNamed(BaseTVC& list, const QString& name) {
        for (int k = 0; k < list.rows()->count(); ++k)
            if (list.rows()->rowAt(k)->name == name) return k;
        return -1;
    }

    Sound* snare = nullptr;
    Loop* builtIn = nullptr;
    Loop* mine = nullptr;
};

TEST_F(ListsTest, SwipeButtonsFollowWhatTheFolderAndItemHold) {
    // A user loop in the built-in folder does not make that folder deletable.
    dater().createPreloaded(false, "Also mine", 90, {}, "Built-in loops", "");
    dater().save();
    LoopsTVC loops;
    const ListRow* builtInFolder = loops.rows()->rowAt(rowNamed(loops, "Built-in loops"));
    const ListRow* myFolder = loops.rows()->rowAt(rowNamed(loops, "My loops"));
    ASSERT_TRUE(builtInFolder && myFolder);
    EXPECT_TRUE(builtInFolder->rightButtons.isEmpty());
    EXPECT_EQ(myFolder->rightButtons, (QStringList{"deleteRowButton", "editRowButton"}));
    EXPECT_TRUE(myFolder->leftButtons.isEmpty());

    const ListRow* easy = loops.rows()->rowAt(rowNamed(loops, "Easy"));
    const ListRow* own = loops.rows()->rowAt(rowNamed(loops, "Mine"));
    ASSERT_TRUE(easy && own);
    EXPECT_TRUE(easy->rightButtons.isEmpty());
    EXPECT_EQ(own->rightButtons, QStringList{"deleteRowButton"});
    EXPECT_EQ(own->leftButtons, (QStringList{"shareRowButton", "copyRowButton"}));
    EXPECT_EQ(own->author, "Tester");
    EXPECT_EQ(easy->author, "Studio");

    // Pressing where a button would be does nothing on rows without it.
    loops.swipeButtonTapped(rowNamed(loops, "Built-in loops"), 0, BaseTVC::kRightSide);
    loops.swipeButtonTapped(rowNamed(loops, "Easy"), 0, BaseTVC::kRightSide);
    EXPECT_NE(dater().findEntity("LoopFolder", "Built-in loops"), nullptr);
    EXPECT_NE(dater().findEntity("Loop", "Easy"), nullptr);

    // Sound folders can be shared; sound rows have no copy.
    SoundsTVC sounds;
    const ListRow* soundFolder = sounds.rows()->rowAt(rowNamed(sounds, "My sounds"));
    ASSERT_TRUE(soundFolder);
    EXPECT_EQ(soundFolder->leftButtons, QStringList{"shareRowButton"});
    EXPECT_EQ(sounds.rows()->rowAt(rowNamed(sounds, "Snare"))->leftButtons, QStringList{"shareRowButton"});
}

TEST_F(ListsTest, DeletingALoopTakesItOutOfEveryTrackThatUsedIt) {
    TrackLoop* row = dater().createTrackLoopWithLoop(mine, {dater().loopSqrsWithSquares(0xF000)}, 80, 5);
    Track* song = dater().createPreloaded(false, "Song", 120, 16, {row}, "My tracks", "");
    dater().save();
    ASSERT_EQ(song->trackloops().size(), 1u);

    LoopsTVC loops;
    // Only the deleted row leaves the view (so the rows around it can slide
    // into its place); its folder's row is told its new count.
    QSignalSpy resets(loops.rows(), &QAbstractItemModel::modelReset);
    QSignalSpy removed(loops.rows(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(loops.rows(), &QAbstractItemModel::dataChanged);
    const int at = rowNamed(loops, "Mine");
    loops.swipeButtonTapped(at, 0, BaseTVC::kRightSide);
    EXPECT_EQ(rowNamed(loops, "Mine"), -1);
    EXPECT_EQ(resets.count(), 0);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), at);
    EXPECT_EQ(removed[0][2].toInt(), at);
    const int folder = rowNamed(loops, "My loops");
    bool countTold = false;
    for (const QList<QVariant>& change : changed)
        countTold = countTold || change[0].toModelIndex().row() == folder;
    EXPECT_TRUE(countTold);
    EXPECT_EQ(loops.rows()->rowAt(folder)->itemCount, 0);
    EXPECT_TRUE(song->trackloops().empty());

    reopen();
    EXPECT_EQ(dater().findEntity("Loop", "Mine"), nullptr);
    auto* stored = static_cast<Track*>(dater().findEntity("Track", "Song"));
    ASSERT_NE(stored, nullptr);
    EXPECT_TRUE(stored->trackloops().empty());
}

TEST_F(ListsTest, DeletingAUserSoundFolderRemovesItsFilesAndInstruments) {
    Filer::setDocumentsDirectory(dir.path());
    const std::string wav = dir.file(Filer::wavf("Snare")), jpg = dir.file(Filer::jpgf("Snare"));
    std::FILE* w = std::fopen(wav.c_str(), "w");
    std::FILE* j = std::fopen(jpg.c_str(), "w");
    ASSERT_TRUE(w && j);
    std::fclose(w);
    std::fclose(j);
    ASSERT_EQ(mine->instruments().size(), 1u);

    SoundsTVC sounds;
    sounds.swipeButtonTapped(rowNamed(sounds, "My sounds"), 0, BaseTVC::kRightSide);
    EXPECT_EQ(dater().findEntity("SoundFolder", "My sounds"), nullptr);
    EXPECT_EQ(dater().findSoundWithName("Snare"), nullptr);
    EXPECT_TRUE(mine->instruments().empty());
    EXPECT_FALSE(std::filesystem::exists(wav));
    EXPECT_FALSE(std::filesystem::exists(jpg));
}

TEST_F(ListsTest, CopyOfABuiltInLoopGoesToMyLoopsAndFoldersRenameUniquely) {
    LoopsTVC loops;
    loops.swipeButtonTapped(rowNamed(loops, "Easy"), 1, BaseTVC::kLeftSide);
    auto* myLoops = static_cast<LoopFolder*>(dater().findEntity("LoopFolder", "My loops"));
    ASSERT_NE(myLoops, nullptr);
    ASSERT_EQ(myLoops->items().size(), 2u);
    bool copied = false;
    for (Loop* loop : myLoops->items()) copied = copied || (loop != mine && !loop->preloaded());
    EXPECT_TRUE(copied);

    dater().loopFolder("Beats");
    dater().save();
    loops.setItemsAndReloadTable();
    loops.editFolderAtRow(rowNamed(loops, "Beats"));
    ASSERT_NE(loops.editView(), nullptr);
    loops.editView()->updateName("My loops");
    loops.editView()->donePressed();
    EXPECT_EQ(loops.editView(), nullptr);
    EXPECT_NE(rowNamed(loops, "My loops 2"), -1);
    EXPECT_EQ(rowNamed(loops, "Beats"), -1);
    // A folder holding built-in items offers no rename.
    loops.editFolderAtRow(rowNamed(loops, "Built-in loops"));
    EXPECT_EQ(loops.editView(), nullptr);
}

TEST_F(ListsTest, FolderOpenStateIsKeptInTheStore) {
    LoopsTVC loops;
    const int before = loops.rows()->count();
    const int folder = rowNamed(loops, "Built-in loops");
    QSignalSpy resets(loops.rows(), &QAbstractItemModel::modelReset);
    QSignalSpy removed(loops.rows(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(loops.rows(), &QAbstractItemModel::rowsInserted);
    loops.didSelectRow(folder);
    EXPECT_EQ(loops.rows()->count(), before - 1);
    EXPECT_EQ(rowNamed(loops, "Easy"), -1);
    // Closing and opening take out and put back just the folder's item rows.
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), folder + 1);
    loops.didSelectRow(folder);
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), folder + 1);
    EXPECT_EQ(resets.count(), 0);
    loops.didSelectRow(folder);
    reopen();
    LoopsTVC again;
    EXPECT_EQ(again.rows()->count(), before - 1);
    EXPECT_FALSE(static_cast<LoopFolder*>(dater().findEntity("LoopFolder", "Built-in loops"))->opened());
}

TEST_F(ListsTest, TrackRowsShowTheirLength) {
    EXPECT_EQ(BaseTVC::lengthText(120, 16), "0:32");
    EXPECT_EQ(BaseTVC::lengthText(60, 128), "8:32");
    EXPECT_EQ(BaseTVC::lengthText(70, 3), "0:10");  // 10.28 s, truncated
    dater().createPreloaded(false, "Long", 60, 128, {}, "My tracks", "");
    dater().save();
    TracksTVC tracks;
    const ListRow* row = tracks.rows()->rowAt(rowNamed(tracks, "Long"));
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->detail, "8:32");
    EXPECT_EQ(tracks.title(), "Tracks");
}

}  // namespace
