// The track editor's decisions on a real store and the offline engine: where
// a tap lands, what one, two and three taps do, rows, length, volume, tempo,
// and the user copy of a built-in track.
#include "library/palette/Colorer.h"
#include "library/patterns/Tacter.h"
#include "playback/Trackloopplayer.h"
#include "screens/kit/KitColorer.h"
#include "tests/screens/trackeditor/TrackEditorHarness.h"

namespace {
::testing::Environment* const qt = ::testing::AddGlobalTestEnvironment(new OffscreenApplication);
}

using OneTrackVCTest = TrackEditorHarness;

TEST_F(OneTrackVCTest, TapsOutsideTheRowsAndSquaresSelectNothing) {
    Track* track = makeTrack(4, {0, 0});
    OneTrackVC& c = open(track);
    const double h = TrackFramr::heiForTrackLoop();
    int row = -1, square = -1;
    EXPECT_FALSE(c.isTouchedPoint({h * 0.5, TrackFramr::heiForTimesc() * 0.5}, &row, &square));  // time line
    EXPECT_FALSE(c.isTouchedPoint({h * 4.5, centreOf(0, 0).y()}, &row, &square));               // past square 3
    EXPECT_FALSE(c.isTouchedPoint({h * 0.5, centreOf(2, 0).y()}, &row, &square));               // past row 1
    ASSERT_TRUE(c.isTouchedPoint(centreOf(1, 3), &row, &square));
    EXPECT_EQ(row, 1);
    EXPECT_EQ(square, 3);

    for (QPointF p : {QPointF(h * 0.5, 2.0), QPointF(h * 4.5, centreOf(0, 0).y()), QPointF(h * 0.5, centreOf(2, 0).y())}) {
        c.tappedOnce(p.x(), p.y());
        c.tappedTrice(p.x(), p.y());
    }
    for (TrackLoop* r : track->trackloops()) EXPECT_EQ(r->squares()[0]->squares(), 0);
}

TEST_F(OneTrackVCTest, OneTapTogglesASquareInPlaceAndIsHeardAtTheNextBar) {
    Track* track = makeTrack(4, {0});
    OneTrackVC& c = open(track);
    Trackplayer* player = c.trackplayer();
    ASSERT_NE(player, nullptr);
    EXPECT_EQ(render(kBar / 2)[0], 0);  // square 0 is off

    const QPointF p = centreOf(0, 1);
    c.tappedOnce(p.x(), p.y());
    // A built-in track is changed in place for square taps, and keeps playing.
    EXPECT_EQ(c.track(), track);
    EXPECT_TRUE(track->preloaded());
    EXPECT_TRUE(Tacter::isSquareSelected(1, track->trackloops()[0]));
    EXPECT_EQ(c.trackplayer(), player);
    EXPECT_FALSE(c.paused());

    auto out = render(kBar);  // frames kBar/2 .. 3kBar/2: square 1 starts at kBar
    EXPECT_EQ(out[kBar / 2 - 1], 0);
    EXPECT_NE(out[kBar / 2], 0);
    EXPECT_EQ(c.playingSq(), 1);

    c.tappedOnce(p.x(), p.y());
    EXPECT_FALSE(Tacter::isSquareSelected(1, track->trackloops()[0]));
}

TEST_F(OneTrackVCTest, ThreeTapsSetTheWholeRowToTheOppositeOfTheTappedSquare) {
    Track* track = makeTrack(20, {Tacter::tacts("-1--------------"), 0});
    OneTrackVC& c = open(track);
    TrackLoop* row = track->trackloops()[0];

    QPointF unselected = centreOf(0, 5);
    c.tappedTrice(unselected.x(), unselected.y());
    for (uint64_t s = 0; s < 20; ++s) EXPECT_TRUE(Tacter::isSquareSelected(s, row)) << s;
    EXPECT_FALSE(Tacter::isSquareSelected(20, row));  // only squaresnum squares
    EXPECT_EQ(track->trackloops()[1]->squares()[0]->squares(), 0);

    QPointF selected = centreOf(0, 1);
    c.tappedTrice(selected.x(), selected.y());
    for (uint64_t s = 0; s < 32; ++s) EXPECT_FALSE(Tacter::isSquareSelected(s, row)) << s;
}

TEST_F(OneTrackVCTest, TwoTapsOnSquareSevenPlayFromThereEvenWhenPaused) {
    // Only square 7 sounds: a start anywhere else is silent at first.
    Track* track = makeTrack(8, {Tacter::tacts("-------1--------")});
    OneTrackVC& c = open(track);
    c.pausePressed();
    ASSERT_TRUE(c.paused());
    EXPECT_EQ(render(kBar), std::vector<int16_t>(kBar, 0));

    const QPointF p = centreOf(0, 7);
    c.tappedTwice(p.x(), p.y());
    EXPECT_FALSE(c.paused());
    EXPECT_EQ(c.playingSq(), 7);
    auto out = render(2 * kBar);
    // Square 7's bar from the first frame, then the track goes round to square 0 (silent).
    EXPECT_EQ(out[0], sounds["Hit"].left[0]);
    EXPECT_EQ(out[999], sounds["Hit"].left[999]);
    EXPECT_EQ(out[kBar], 0);
    EXPECT_EQ(c.playingSq(), 0);
}

TEST_F(OneTrackVCTest, RowsComeAndGoAndTheAddButtonFollowsTheCount) {
    Track* builtIn = makeTrack(4, {0xFFFF});
    OneTrackVC& c = open(builtIn);

    c.newLtPressed();
    // The first change that is not a square tap works on a user copy.
    Track* copy = c.track();
    ASSERT_NE(copy, builtIn);
    EXPECT_FALSE(copy->preloaded());
    EXPECT_EQ(builtIn->trackloops().size(), 1u);
    ASSERT_EQ(copy->trackloops().size(), 2u);
    TrackLoop* fresh = copy->trackloops()[1];
    EXPECT_EQ(fresh->loop(), easyBeat);
    EXPECT_EQ(fresh->volume(), 100);
    ASSERT_EQ(fresh->squares().size(), 1u);
    EXPECT_EQ(fresh->squares()[0]->squares(), 0);
    // The new row opens, and the track is stopped.
    EXPECT_EQ(c.openRow(), 1);
    // Its picker stands on the row's loop.
    ASSERT_NE(c.trackloopView(), nullptr);
    EXPECT_EQ(c.trackloopView()->loops().value(c.trackloopView()->loopRow()), "Easy beat 95");
    EXPECT_FALSE(c.isPlaying());
    EXPECT_EQ(c.trashImage(), "okButton");

    while (c.canAddRow()) {
        c.trashOkPressed();  // closes the open row
        c.newLtPressed();
    }
    EXPECT_EQ(c.rowCount(), 10);
    c.trashOkPressed();
    c.newLtPressed();  // no eleventh row
    EXPECT_EQ(c.rowCount(), 10);

    c.trashOkPressed();  // start deleting
    ASSERT_TRUE(c.deleting());
    c.trashButtonsPressed(0);
    c.trashButtonsPressed(3);
    EXPECT_EQ(c.rowCount(), 10);  // marked, not gone yet
    TrackLoop* kept = copy->trackloops()[1];
    c.trashOkPressed();
    EXPECT_FALSE(c.deleting());
    EXPECT_EQ(c.rowCount(), 8);
    EXPECT_TRUE(c.canAddRow());
    EXPECT_EQ(copy->trackloops()[0], kept);
    EXPECT_EQ(CoreDater::shIns().getAllItemsOfEntity("TrackLoop").size(), 1u + 8u);  // the built-in row is untouched

    // Reopened from the store, the copy has its eight rows.
    Track* again = static_cast<Track*>(CoreDater::shIns().findEntity("Track", copy->name()));
    EXPECT_EQ(again->trackloops().size(), 8u);
}

TEST_F(OneTrackVCTest, LengthVolumeAndTempoAreStoredTruncated) {
    Track* track = makeTrack(4, {0xFFFF, 0xFFFF});
    OneTrackVC& c = open(track);

    c.trackSquaresPressed();
    ASSERT_TRUE(c.squaresNumOpen());
    EXPECT_FALSE(c.isPlaying());
    c.sqNumView()->setValue(128.7);
    c.updateSquaresNum(c.sqNumView());
    EXPECT_EQ(c.track()->squaresnum(), 128);
    EXPECT_EQ(track->squaresnum(), 4);  // the built-in track keeps its length
    c.squaresNumViewPressed(c.sqNumView());
    EXPECT_FALSE(c.squaresNumOpen());
    EXPECT_EQ(c.contentWidth(), 130 * TrackFramr::heiForTrackLoop());
    EXPECT_FALSE(c.isPlaying());  // stays stopped until play
    c.pausePressed();
    ASSERT_TRUE(c.isPlaying());
    EXPECT_EQ(c.playingSq(), 0);

    VolumeView* volume = c.rowVolumeView(1);
    ASSERT_NE(volume, nullptr);
    volume->setValue(55.7);
    c.updateVolume(volume);
    EXPECT_EQ(c.track()->trackloops()[1]->volume(), 55);
    auto group = c.trackplayer()->entry(1)->getLoopGrop();
    ASSERT_NE(group, nullptr);
    EXPECT_FLOAT_EQ(controller->volume(group), 0.55f);

    c.updateBpm(140.9f);
    EXPECT_EQ(c.track()->bpm(), 140);
}

TEST_F(OneTrackVCTest, ARowsColourAndLoopShowOnItsPicturesAndThePreviewShrinksTiles) {
    Track* builtIn = makeTrack(4, {0xFFFF, 0xFFFF});  // both rows: the one-hit loop, colour 20
    OneTrackVC& c = open(builtIn);
    c.trackLoopPressed(0);
    TrackLoopView* row = c.trackloopView();
    ASSERT_NE(row, nullptr);

    // The chooser opens at the row's colour; a touch on the hit sound's own colour picks it.
    SoundColorView* chooser = row->colorPressed();
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->colorNumBefore(), 20);
    const int hitColor = 1;
    chooser->touchAt((hitColor % 9 + 0.5) * 390 / 9, (hitColor / 9 + 0.5) * 844 * 0.0625, 390, 844);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(row->soundColorV(), nullptr) << "the chooser closes after a pick";

    Track* copy = c.track();
    ASSERT_NE(copy, builtIn);
    EXPECT_EQ(copy->trackloops()[0]->color(), hitColor);
    EXPECT_EQ(builtIn->trackloops()[0]->color(), 20);
    const QColor plain = KitColorer::colorForNumber(hitColor);
    const QColor shifted = toQColor(*Colorer::changedColorForColor(Colorer::colorForNumber(hitColor), -0.03));
    ASSERT_NE(plain, shifted);
    ASSERT_EQ(row->loopView()->count(), 1);
    EXPECT_EQ(row->loopView()->colors()[0], shifted) << "on a background of its own colour the tile darkens";
    EXPECT_EQ(c.rowLoopView(0)->colors()[0], shifted);
    EXPECT_EQ(c.rowLoopView(1)->colors()[0], plain);

    // The preview shrinks the tile of the sounding sound, and lets it go when stopped.
    row->playPausePressed();
    ASSERT_TRUE(row->previewing());
    bool shrank = false;  // the hit is short: look between small blocks
    for (int block = 0; block < 64 && !shrank; ++block) {
        render(128);
        shrank = row->loopView()->sounding() == 1;
    }
    EXPECT_TRUE(shrank);
    row->stopPreview();
    EXPECT_EQ(row->loopView()->sounding(), 0);

    // Another loop: the row's head shows its picture, the other head keeps its own.
    row->updateTrackLoopWithLoop(easyBeat);
    EXPECT_EQ(c.rowLoopView(0)->loop(), easyBeat);
    EXPECT_EQ(row->loopView()->loop(), easyBeat);
    EXPECT_EQ(c.rowLoopView(1)->loop(), hitLoop);
    EXPECT_EQ(c.rowName(0), "Easy beat 95");
}
