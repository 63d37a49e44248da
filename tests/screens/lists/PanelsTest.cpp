// The name-and-folder panel, its rename variant and the folder chooser:
// what a typed name or folder becomes, what Done and Cancel tell, and the
// chooser driven on screen with taps.
#include <QSignalSpy>

#include "export/Framr.h"
#include "screens/lists/ListsSetup.h"
#include "screens/lists/panels/FoldersView.h"
#include "screens/lists/panels/LoopOrFolderEditView.h"
#include "tests/library/TestStore.h"
#include "tests/screens/kit/KitScene.h"

namespace {

::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

struct RecordingDelegate : NameAndFolderDelegate {
    void applyName(const QString& name, const QString& folder) override { calls << "apply " + name + " in " + folder; }
    void removEditView() override { calls << "remove"; }
    QStringList calls;
};

class PanelsTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        dater().loopFolder("Beats");
        dater().loopFolder("Ambient");
    }
};

TEST_F(PanelsTest, TypedNamesAreCleanedAndBlankOnesGetTheKindsName) {
    NameNFlderChoosrView loop("Old", "Beats", "LoopFolder");
    loop.beginEditingName();
    EXPECT_TRUE(loop.editingName());
    loop.updateName("Dub/step: \"one\"");
    EXPECT_EQ(loop.name(), "Dubstep one");
    EXPECT_FALSE(loop.editingName());
    loop.updateName(" \t ");
    EXPECT_EQ(loop.name(), "Loop");

    NameNFlderChoosrView sound("x", "My sounds", "SoundFolder");
    sound.updateName("");
    EXPECT_EQ(sound.name(), "Sound");
    EXPECT_TRUE(sound.isForSound());
    NameNFlderChoosrView track("x", "", "TrackFolder");
    track.updateName("   ");
    EXPECT_EQ(track.name(), "Track");
    // A panel without a folder has no chooser to open.
    EXPECT_FALSE(track.hasFolder());
    track.openFoldersView();
    EXPECT_EQ(track.foldersView(), nullptr);
}

TEST_F(PanelsTest, ChooserListsTheKindsFoldersAndClosesWithTheChosenOne) {
    dater().soundFolder("Voices");
    FoldersView chooser("Beats", "LoopFolder");
    EXPECT_EQ(chooser.folders().size(), 2);  // no sound folder among them
    ASSERT_GE(chooser.checkedRow(), 0);
    EXPECT_EQ(chooser.folders().at(chooser.checkedRow()), "Beats");

    QSignalSpy closed(&chooser, &FoldersView::closed);
    const int ambient = static_cast<int>(chooser.folders().indexOf("Ambient"));
    chooser.chooseRow(ambient);
    EXPECT_EQ(chooser.checkedRow(), ambient);
    ASSERT_EQ(closed.size(), 1);
    EXPECT_EQ(closed.at(0).at(0).toString(), "Ambient");
    chooser.chooseRow(0);  // already closed: says nothing more
    EXPECT_EQ(closed.size(), 1);
}

TEST_F(PanelsTest, NewFolderNameIsCleanedDefaultedAndCancelBringsTheTableBack) {
    FoldersView blank("Beats", "LoopFolder");
    QSignalSpy blankClosed(&blank, &FoldersView::closed);
    blank.addPressed();
    EXPECT_TRUE(blank.adding());
    EXPECT_EQ(blank.defaultFolderName(), "My loops");
    blank.doneAdding("  ");
    ASSERT_EQ(blankClosed.size(), 1);
    EXPECT_EQ(blankClosed.at(0).at(0).toString(), "My loops");

    FoldersView typed("Beats", "SoundFolder");
    QSignalSpy typedClosed(&typed, &FoldersView::closed);
    typed.addPressed();
    typed.doneAdding("Field <recordings>?");
    ASSERT_EQ(typedClosed.size(), 1);
    EXPECT_EQ(typedClosed.at(0).at(0).toString(), "Field recordings");

    FoldersView cancelled("Beats", "LoopFolder");
    QSignalSpy cancelledClosed(&cancelled, &FoldersView::closed);
    cancelled.addPressed();
    cancelled.cancelAdding();
    EXPECT_FALSE(cancelled.adding());
    cancelled.touchedOutside(true);  // only ends the edit
    EXPECT_EQ(cancelledClosed.size(), 0);
    cancelled.touchedOutside(false);
    ASSERT_EQ(cancelledClosed.size(), 1);
    EXPECT_EQ(cancelledClosed.at(0).at(0).toString(), "Beats");
}

TEST_F(PanelsTest, DoneAppliesTheTypedNameAndChosenFolderThenCloses) {
    RecordingDelegate delegate;
    LoopOrFolderEditView panel("Groove", "Beats", "LoopFolder", &delegate);
    EXPECT_TRUE(panel.hasCancelButton());
    EXPECT_TRUE(panel.hasDoneButton());

    panel.openFoldersView();
    ASSERT_NE(panel.foldersView(), nullptr);
    panel.foldersView()->addPressed();
    panel.foldersView()->doneAdding("Night");
    EXPECT_EQ(panel.foldersView(), nullptr);
    EXPECT_EQ(panel.folderName(), "Night");

    // Done while the field still has focus takes what was typed.
    panel.beginEditingName();
    panel.setTypedText("Late: groove");
    panel.donePressed();
    EXPECT_EQ(delegate.calls, (QStringList{"apply Late groove in Night", "remove"}));

    RecordingDelegate other;
    LoopOrFolderEditView cancelled("Groove", "Beats", "LoopFolder", &other);
    cancelled.cancelPressed();
    EXPECT_EQ(other.calls, QStringList{"remove"});
}

TEST_F(PanelsTest, PanelOnScreenChoosesAFolderByTapsAndReportsOnDone) {
    RecordingDelegate delegate;
    LoopOrFolderEditView panel("Groove", "Beats", "LoopFolder", &delegate);
    quillo::kit::testing::KitScene scene;
    quillo::lists::addTo(scene.engine);
    QQuickItem* root = scene.load(R"(
import Quillo.Lists
Item {
    width: 390; height: 844
    required property LoopOrFolderEditView editView
    LoopOrFolderEditViewItem { editView: parent.editView }
}
)", {{"editView", QVariant::fromValue(&panel)}});
    ASSERT_TRUE(root);
    panel.showFrom(QRectF(20, 20, 40, 40));
    scene.clock.advanceBy(400);

    scene.tap(Framr::ffFolderName(false).center());
    ASSERT_NE(panel.foldersView(), nullptr);
    scene.clock.advanceBy(400);

    // Rows start at the table's top; the second row is the other folder.
    QQuickItem* table = scene.find("foldersTable");
    ASSERT_TRUE(table);
    const QStringList folders = panel.foldersView()->folders();
    const int other = folders.indexOf("Beats") == 0 ? 1 : 0;
    const double rowHei = Framr::heightForUsualCell() * 0.8 + 6;
    const QRectF tableFrame = Framr::ffSoundFolderTable();
    scene.tap({tableFrame.center().x(), tableFrame.y() + rowHei * (other + 0.5)});
    EXPECT_EQ(panel.foldersView(), nullptr);
    EXPECT_EQ(panel.folderName(), folders.at(other));

    const QRectF done = Framr::ffBottomButtonAtCol(2, false);
    scene.tap(done.center());
    EXPECT_EQ(delegate.calls, (QStringList{"apply Groove in " + folders.at(other), "remove"}));
}

}  // namespace
