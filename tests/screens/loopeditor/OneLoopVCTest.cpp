// The loop editor's decisions, checked in the store and in the audio the
// running player renders on the next bar.
#include <QSignalSpy>
#include <QTest>

#include "library/text/Localized.h"
#include "tests/screens/loopeditor/LoopEditorFixture.h"

namespace {

int argc = 1;
char name[] = "test_loopeditor";
char* argv[] = {name, nullptr};
QCoreApplication app(argc, argv);  // timers

class OneLoopVCTest : public LoopEditorFixture {};

TEST_F(OneLoopVCTest, StepTapIsSavedOnACopyAndHeardOnTheNextBar) {
    Loop* original = builtIn({{"S1", "----------------", 100}, {"S2", "--------1-------", 100}});
    open(original);
    EXPECT_EQ(heard(renderBar()), steps({{8, 2}}));

    vc->instrPressed(tileIndexAtSlot(0));
    ASSERT_NE(vc->instrumentView(), nullptr);
    EXPECT_TRUE(vc->navigationBarHidden());
    EXPECT_EQ(vc->trashImage(), "okButton");
    vc->instrumentView()->tactPressed(0);
    vc->instrumentView()->tactPressed(16);  // not a step button: ignored

    // The first edit made a user copy; the built-in loop is as it was.
    Loop* copy = vc->loop();
    ASSERT_NE(copy, original);
    EXPECT_FALSE(copy->preloaded());
    EXPECT_EQ(copy->name(), original->name() + " 2");
    EXPECT_EQ(copy->inFolder()->name(), localized("My loops"));
    EXPECT_EQ(vc->title().toStdString(), copy->name());
    EXPECT_EQ(copy->instruments()[0]->tactsMask(), 0x8000);
    EXPECT_EQ(vc->instrumentView()->instrument(), copy->instruments()[0]) << "the open panel follows the copy";
    EXPECT_TRUE(original->preloaded());
    EXPECT_EQ(original->instruments()[0]->tactsMask(), 0);

    EXPECT_EQ(heard(renderBar()), steps({{0, 1}, {8, 2}})) << "the player kept playing and took the step";
    vc->instrumentView()->tactPressed(0);
    EXPECT_EQ(copy->instruments()[0]->tactsMask(), 0);
    EXPECT_EQ(vc->loop(), copy) << "a user loop is edited in place";
    EXPECT_EQ(heard(renderBar()), steps({{8, 2}}));

    vc->trashOkPressed();  // OK closes the instrument
    EXPECT_EQ(vc->instrumentView(), nullptr);
    EXPECT_FALSE(vc->navigationBarHidden());
    EXPECT_EQ(vc->trashImage(), "trashButton");
}

TEST_F(OneLoopVCTest, DeletingZeroAndTwoOfFourClosesTheGapInStoreTilesAndPlayer) {
    Loop* original = builtIn({{"S1", "1---------------", 100},
                              {"S2", "----1-----------", 100},
                              {"S3", "--------1-------", 100},
                              {"S4", "------------1---", 100}});
    open(original);
    EXPECT_EQ(heard(renderBar()), steps({{0, 1}, {4, 2}, {8, 3}, {12, 4}}));
    const int tile1 = tileIndexAtSlot(1), tile3 = tileIndexAtSlot(3);

    vc->trashOkPressed();
    EXPECT_TRUE(vc->deleting());
    EXPECT_FALSE(vc->addTileShown());
    vc->instrPressed(tileIndexAtSlot(0));
    vc->instrPressed(tileIndexAtSlot(2));
    vc->instrPressed(99);  // not a tile
    EXPECT_EQ(vc->instrsToDelete(), (std::vector<int>{0, 2}));
    EXPECT_EQ(vc->instrumentView(), nullptr) << "marking does not open";
    vc->trashOkPressed();
    EXPECT_FALSE(vc->deleting());

    ASSERT_EQ(vc->instrumentCount(), 2);
    EXPECT_EQ(vc->loop()->instruments()[0]->sound()->name(), "S2");
    EXPECT_EQ(vc->loop()->instruments()[1]->sound()->name(), "S4");
    EXPECT_EQ(original->instruments().size(), 4u) << "the built-in loop keeps its instruments";
    EXPECT_EQ(tileIndexAtSlot(0), tile1);
    EXPECT_EQ(tileIndexAtSlot(1), tile3);
    int shown = 0;
    for (QObject* t : vc->tiles()) shown += static_cast<LoopTile*>(t)->present();
    EXPECT_EQ(shown, 2) << "the deleted tiles are gone";
    EXPECT_EQ(vc->addTileCell(), 2);
    EXPECT_TRUE(vc->addTileShown());

    // Slot 0 now plays S2 on its steps, slot 1 S4; slots 2 and 3 are silent.
    EXPECT_EQ(heard(renderBar()), steps({{4, 2}, {12, 4}}));
    // The moved slots are edited by their new positions.
    vc->instrPressed(tileIndexAtSlot(1));
    vc->instrumentView()->tactPressed(2);
    EXPECT_EQ(heard(renderBar()), steps({{2, 4}, {4, 2}, {12, 4}}));
}

TEST_F(OneLoopVCTest, TheAddTileLeavesAtEightAndComesBackInTheLastCell) {
    std::vector<Row> rows;
    for (int i = 1; i <= 7; ++i) rows.push_back({"S" + std::to_string(i), "----------------", 100});
    open(builtIn(rows));
    EXPECT_EQ(vc->addTileCell(), 7);

    vc->newInstrumentPressed();
    EXPECT_TRUE(vc->choiceButtonsShown());
    EXPECT_FALSE(vc->addTileShown());
    EXPECT_TRUE(vc->choiceTimerActive());
    vc->typeOfNewInstrButtonPressed(0);  // from the list
    EXPECT_FALSE(vc->choiceButtonsShown());
    ASSERT_EQ(vc->instrumentCount(), 8);
    EXPECT_EQ(vc->addTileCell(), -1);
    Instrument* added = vc->loop()->instruments()[7];
    EXPECT_EQ(added->sound()->name(), "Kick");
    EXPECT_EQ(added->tactsMask(), 0);
    EXPECT_EQ(added->volume(), 100);
    ASSERT_NE(vc->instrumentView(), nullptr) << "the new instrument opens";
    EXPECT_EQ(vc->instrumentView()->instrument(), added);

    // The new instrument plays the sound it was given, in its own slot.
    vc->instrumentView()->tactPressed(3);
    EXPECT_EQ(heard(renderBar()), steps({{3, 0}})) << "Kick's right channel is encoded as sound 0";
    EXPECT_NE(renderBar().leftAtStep(3), 0);
    vc->instrumentView()->pickerSelected(0, vc->instrumentView()->rightTitles().indexOf("S5"));
    EXPECT_EQ(added->sound()->name(), "S5");
    EXPECT_EQ(heard(renderBar()), steps({{3, 5}})) << "the sound change reached the player";

    vc->removeInstrView();
    vc->newInstrumentPressed();
    EXPECT_FALSE(vc->choiceButtonsShown()) << "no more than eight";
    vc->trashOkPressed();
    vc->instrPressed(tileIndexAtSlot(2));
    vc->trashOkPressed();
    EXPECT_EQ(vc->instrumentCount(), 7);
    EXPECT_EQ(vc->addTileCell(), 7);
    EXPECT_EQ(vc->loop()->instruments()[6], added);
    EXPECT_EQ(heard(renderBar()), steps({{3, 5}})) << "the eighth moved to slot 6 and still sounds once";
}

TEST_F(OneLoopVCTest, TheChoiceButtonsHideAfterTwoSeconds) {
    open(builtIn({{"S1", "----------------", 100}}));
    vc->newInstrumentPressed();
    QTest::qWait(1500);
    vc->newInstrumentPressed();  // restarts the timer
    QTest::qWait(1000);
    EXPECT_TRUE(vc->choiceButtonsShown());
    QTest::qWait(1300);
    EXPECT_FALSE(vc->choiceButtonsShown());
    EXPECT_TRUE(vc->addTileShown());
    EXPECT_EQ(vc->instrumentCount(), 1);
}

TEST_F(OneLoopVCTest, TempoAndVolumeAreTruncatedAndReachThePlayer) {
    open(builtIn({{"S1", "1---------------", 100}, {"S2", "----------------", 100}}));
    vc->updateBpm(300.9f);
    EXPECT_EQ(vc->loop()->bpm(), 300);
    EXPECT_FALSE(vc->loop()->preloaded());
    vc->updateBpm(120.0f);

    vc->instrPressed(tileIndexAtSlot(0));
    VolumeView* volume = vc->instrumentView()->volumeV();
    volume->setValue(55.7);
    vc->instrumentView()->updateVolume(volume);
    EXPECT_EQ(vc->loop()->instruments()[0]->volume(), 55);
    EXPECT_FLOAT_EQ(vc->loopplayer()->channelAtIndex(0)->volume(), 0.55f);
    EXPECT_FLOAT_EQ(vc->loopplayer()->channelAtIndex(1)->volume(), 1.0f);
    renderBar();  // the tempo change bites from the step after the one in progress
    const Bar bar = renderBar();
    const int16_t full = sounds["S1"].left[10];
    EXPECT_NEAR(bar.leftAtStep(0), full * 0.55, 1.0);

    // Volume mode: a tile's own adjuster stores and sends the same way.
    vc->removeInstrView();
    vc->doubleTouch();
    EXPECT_EQ(vc->displayMode(), OneLoopVC::Volume);
    auto* tile1 = vc->tileAtSlot(1);
    tile1->volumeView()->setValue(20.9);
    vc->updateVolume(tile1->volumeView());
    EXPECT_EQ(vc->loop()->instruments()[1]->volume(), 20);
    EXPECT_FLOAT_EQ(vc->loopplayer()->channelAtIndex(1)->volume(), 0.2f);
    vc->doubleTouch();
    EXPECT_EQ(vc->displayMode(), OneLoopVC::Photos);
    vc->doubleTouch();
    EXPECT_EQ(vc->displayMode(), OneLoopVC::Plain);
}

TEST_F(OneLoopVCTest, TheSoundPanelClosingAlwaysLeavesPlaybackRunning) {
    open(builtIn({{"S1", "1---1---1---1---", 100}}));
    vc->setSoundPanelAvailable(true);
    vc->pausePressed();
    EXPECT_TRUE(vc->paused());
    EXPECT_EQ(vc->pauseImage(), "playButton");
    EXPECT_EQ(heard(renderBar()), steps({})) << "paused";
    vc->instrPressed(tileIndexAtSlot(0));
    vc->editInstrPressed();
    EXPECT_TRUE(vc->soundPanelOpen());
    EXPECT_EQ(vc->soundPanelSoundName(), "S1");
    vc->removeSoundView();
    EXPECT_FALSE(vc->soundPanelOpen());
    EXPECT_FALSE(vc->paused());
    EXPECT_EQ(heard(renderBar()), steps({{0, 1}, {4, 1}, {8, 1}, {12, 1}}));

    // A cancelled recording for a freshly added instrument takes it away again.
    vc->removeInstrView();
    vc->newInstrumentPressed();
    vc->typeOfNewInstrButtonPressed(1);
    EXPECT_EQ(vc->instrumentCount(), 2);
    EXPECT_TRUE(vc->soundPanelOpen());
    EXPECT_TRUE(vc->paused());
    vc->soundRecordingWasCancelled();
    vc->removeSoundView();
    EXPECT_EQ(vc->instrumentCount(), 1);
    EXPECT_EQ(vc->instrumentView(), nullptr);
    EXPECT_EQ(vc->addTileCell(), 1);
    EXPECT_FALSE(vc->paused());
}

TEST_F(OneLoopVCTest, NameAndFolderRefuseTheBuiltInFolder) {
    Loop* original = builtIn({{"S1", "1---------------", 100}});
    open(original);
    vc->navBarTapped();
    EXPECT_FALSE(vc->nameFolderPanelOpen()) << "built-in loops keep their names";
    vc->instrPressed(tileIndexAtSlot(0));
    vc->instrumentView()->tactPressed(1);
    vc->removeInstrView();
    vc->navBarTapped();
    EXPECT_TRUE(vc->nameFolderPanelOpen());
    EXPECT_TRUE(vc->navigationBarHidden());

    vc->applyName(QString::fromStdString(original->name()), QString::fromStdString(localized("Built-in loops")));
    EXPECT_EQ(vc->loop()->inFolder()->name(), localized("My loops")) << "refused";
    EXPECT_EQ(vc->loop()->name(), original->name() + " 3") << "a name taken by another loop is numbered";
    vc->applyName("Groove", "Sketches");
    EXPECT_EQ(vc->loop()->name(), "Groove");
    EXPECT_EQ(vc->loop()->inFolder()->name(), "Sketches");
    EXPECT_EQ(vc->title(), "Groove");
    vc->closeNameFolderPanel();
    EXPECT_FALSE(vc->navigationBarHidden());
}

struct RecordingTrackEditor : OneLoopVCDelegate {
    Loop* changed = nullptr;
    void loopChanged(Loop* loop) override { changed = loop; }
};

TEST_F(OneLoopVCTest, LeavingStopsThePlayerAndTellsTheTrackEditorAboutTheCopy) {
    Loop* original = builtIn({{"S1", "1---------------", 100}});
    RecordingTrackEditor trackEditor;
    vc = std::make_unique<OneLoopVC>();
    vc->initWithArrowAndDelegat(&trackEditor);
    EXPECT_EQ(vc->leftBarButton(), "backarrow");
    vc->openLoop(original);
    vc->updateBpm(100.0f);
    QSignalSpy closed(vc.get(), &OneLoopVC::closeRequested);
    vc->menuButtonTapped();
    EXPECT_EQ(closed.count(), 1);
    EXPECT_EQ(trackEditor.changed, vc->loop());
    EXPECT_NE(trackEditor.changed, original);
    EXPECT_EQ(vc->loopplayer(), nullptr);
    EXPECT_TRUE(context.loopplayers.empty());
    EXPECT_TRUE(context.loadedFiles.empty()) << "the loaded sounds were freed";
    EXPECT_EQ(heard(renderBar()), steps({}));
}

}  // namespace
