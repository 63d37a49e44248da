// Naming, copying, deleting and square-chain rules of the store.
#include "library/patterns/Tacter.h"
#include "library/text/Utly.h"
#include "tests/library/TestStore.h"

using CoreDaterTest = StoreTest;

TEST_F(CoreDaterTest, NewItemNamesFillTheFirstGap) {
    auto& d = dater();
    EXPECT_EQ(d.createEmptyUsersLoop()->name(), "Loop 1");
    d.createEmptyUsersLoop()->setName("Loop 3");
    EXPECT_EQ(d.createEmptyUsersLoop()->name(), "Loop 2");
    EXPECT_EQ(d.createEmptyUsersLoop()->name(), "Loop 4");
    auto* track = d.createEmptyUsersTrack();
    EXPECT_EQ(track->name(), "Track 1");
    EXPECT_EQ(track->bpm(), 90);
    EXPECT_EQ(track->squaresnum(), 4);
    EXPECT_EQ(track->inFolder()->name(), "My tracks");
    EXPECT_EQ(track->artist(), "Tester");
}

TEST_F(CoreDaterTest, UniqueNamesNumberFromTwoAndLogEachTakenCandidate) {
    auto& d = dater();
    EXPECT_EQ(Utly::changeNameOf("Sound", "  \n"), "Sound");
    d.createRecordedSound("Sound", 1, "My sounds");
    EXPECT_EQ(Utly::changeNameOf("Sound", ""), "Sound 2");
    d.createRecordedSound("Beat", 1, "My sounds");
    d.createRecordedSound("Beat 2", 1, "My sounds");
    LogCapture log;
    EXPECT_EQ(Utly::changeNameOf("Sound", "Beat"), "Beat 3");
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"exist Beat 3"}));
    EXPECT_EQ(Utly::changeNameOf("Loop", "Beat"), "Beat");  // names are unique per kind only
}

TEST_F(CoreDaterTest, NamesAreOneLineAndFitTheirFiles) {
    // Control characters and line separators go; any Unicode white space is blank.
    EXPECT_EQ(Utly::changeNameOf("Sound", "Be\tat\n\x1b[31m\u2028 one"), "Beat[31m one");
    EXPECT_EQ(Utly::changeNameOf("Loop", "\u2003\u00a0\u3000"), "Loop");
    EXPECT_EQ(Utly::deleteBadCharactersFromString("a\nb\x7f"), "ab");
    // Taken on disk counts as taken; the number still fits in the byte limit,
    // cut at a character boundary.
    const std::string wide = std::string(9, 'x') + "\u00e9";  // 11 bytes
    dater().createRecordedSound(wide, 1, "My sounds");
    auto onDisk = [](const std::string& name) { return name == "xxxxxxxxx 2"; };
    EXPECT_EQ(Utly::changeNameOf("Sound", wide, onDisk, 11), "xxxxxxxxx 3");
    EXPECT_EQ(Utly::changeNameOf("Sound", std::string(20, 'y'), nullptr, 11), std::string(11, 'y'));
}

TEST_F(CoreDaterTest, CopiesKeepRowsInOrderAndNumberTheirNames) {
    auto& d = dater();
    d.createPreloadedSound("Kick", 57, "Drums", "A");
    d.createPreloadedSound("Snare", 54, "Drums", "A");
    auto* src = d.createPreloadedLoop("ktbeat 1", 90,
                                      {d.createInstrumentWithSound("Snare", 0x0808, 35),
                                       d.createInstrumentWithSound("Kick", 0x80A0),
                                       d.createInstrumentWithSound("Snare", 0x0003, 100)},
                                      "Built-in loops", "A");
    auto* c1 = d.createUsersLoopThatCopyOfPreloadedLoop(src);
    auto* c2 = d.createUsersLoopThatCopyOfPreloadedLoop(src);
    EXPECT_EQ(c1->name(), "ktbeat 1 2");
    EXPECT_EQ(c2->name(), "ktbeat 1 3");
    for (Loop* c : {c1, c2}) {
        EXPECT_FALSE(c->preloaded());
        EXPECT_EQ(c->inFolder()->name(), "My loops");
        ASSERT_EQ(c->instruments().size(), 3u);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_NE(c->instruments()[i], src->instruments()[i]);
            EXPECT_EQ(c->instruments()[i]->sound(), src->instruments()[i]->sound());
            EXPECT_EQ(c->instruments()[i]->tactsMask(), src->instruments()[i]->tactsMask());
            EXPECT_EQ(c->instruments()[i]->volume(), src->instruments()[i]->volume());
        }
    }
    // A track copy shares the loops and copies the blocks.
    auto* row = d.createTrackLoopWithLoop(src, {d.loopSqrsWithSquares(0xF000), d.loopSqrsWithSquares(1)}, 36, 41);
    auto* song = d.createPreloadedTrack("Song", 100, 20, {row}, "A");
    auto* copy = d.createUsersTrackThatCopyOfPreloadedTrack(song);
    EXPECT_EQ(copy->name(), "Song 2");
    ASSERT_EQ(copy->trackloops().size(), 1u);
    auto* crow = copy->trackloops()[0];
    EXPECT_EQ(crow->loop(), src);
    ASSERT_EQ(crow->squares().size(), 2u);
    EXPECT_NE(crow->squares()[0], row->squares()[0]);
    EXPECT_EQ(crow->squares()[1]->squaresMask(), 1);
    EXPECT_EQ(crow->volume(), 36);
    EXPECT_EQ(src->inTracks().size(), 2u);
}

TEST_F(CoreDaterTest, UnknownSoundGetsAFilelessUserSound) {
    auto* inst = dater().createInstrumentWithSound("Ghost", 0x8000);
    ASSERT_NE(inst->sound(), nullptr);
    EXPECT_EQ(inst->sound()->name(), "Ghost");
    EXPECT_EQ(inst->sound()->color(), 76);
    EXPECT_EQ(inst->sound()->inFolder()->name(), "My sounds");
    EXPECT_EQ(inst->volume(), 100);
}

TEST_F(CoreDaterTest, DeletingDependentsKeepsTheOtherRowsInOrder) {
    auto& d = dater();
    d.createPreloadedSound("Kick", 57, "Drums", "A");
    d.createPreloadedSound("Hat", 59, "Drums", "A");
    auto* loop = d.createPreloadedLoop("L", 90,
                                       {d.createInstrumentWithSound("Hat", 1), d.createInstrumentWithSound("Kick", 2),
                                        d.createInstrumentWithSound("Hat", 3), d.createInstrumentWithSound("Kick", 4),
                                        d.createInstrumentWithSound("Hat", 5)},
                                       "F", "A");
    auto* other = d.createPreloadedLoop("M", 90, {d.createInstrumentWithSound("Hat", 6)}, "F", "A");
    auto* t1 = d.createPreloadedTrack("T1", 90, 4,
                                      {d.createTrackLoopWithLoop(other, {d.loopSqrsWithSquares(1)}, 1, 1),
                                       d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(2)}, 2, 2),
                                       d.createTrackLoopWithLoop(other, {d.loopSqrsWithSquares(3)}, 3, 3)},
                                      "A");
    auto* t2 = d.createPreloadedTrack("T2", 90, 4, {d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(4)}, 4, 4)},
                                      "A");
    Sound* kick = d.findSoundWithName("Kick");
    d.deleteAllInstrumentsOfSound(kick);
    d.deleteObject(kick);
    std::vector<uint16_t> masks;
    for (auto* i : loop->instruments()) masks.push_back(i->tactsMask());
    EXPECT_EQ(masks, (std::vector<uint16_t>{1, 3, 5}));

    d.deleteAllTrackLoopsOfLoop(loop);
    d.deleteObject(loop);
    ASSERT_EQ(t1->trackloops().size(), 2u);
    EXPECT_EQ(t1->trackloops()[0]->volume(), 1);
    EXPECT_EQ(t1->trackloops()[1]->volume(), 3);
    EXPECT_TRUE(t2->trackloops().empty());
    EXPECT_EQ(store->all<LoopSquares>().size(), 2u);  // the removed rows' blocks went with them
    reopen();
    EXPECT_EQ(store->all<TrackLoop>().size(), 2u);
    EXPECT_EQ(store->all<Instrument>().size(), 4u);  // deleting L left its 3 rows; M has 1
}

TEST_F(CoreDaterTest, FoldersAndTextRules) {
    EXPECT_EQ(dater().soundFolder(""), nullptr);
    EXPECT_EQ(dater().loopFolder(""), nullptr);
    TrackFolder* mine = dater().trackFolder("");
    ASSERT_NE(mine, nullptr);
    EXPECT_EQ(mine->name(), "My tracks");
    EXPECT_TRUE(mine->opened());
    EXPECT_EQ(dater().trackFolder("My tracks"), mine);
    EXPECT_EQ(Utly::deleteBadCharactersFromString("a/b.c"), "abc");
    EXPECT_EQ(Utly::deleteBadCharactersFromString("It's #1 (live) <a,b>; 50% ~ok?|\"x\"{}[]^&:"), "Its 1 live ab 50 okx");
    EXPECT_TRUE(Utly::stringContainOnlyWhitespaces(nullptr));
    EXPECT_TRUE(Utly::stringContainOnlyWhitespaces(" \t\r\n"));
    EXPECT_FALSE(Utly::stringContainOnlyWhitespaces(" a "));
}

TEST_F(CoreDaterTest, SquareChainGrowsByWholeBlocksAndSaves) {
    auto* loop = dater().createEmptyUsersLoop();
    auto* row = dater().createTrackLoopWithLoop(loop, {dater().loopSqrsWithSquares(0)}, 100, 1);
    Tacter::setSquare(17, row, true);
    ASSERT_EQ(row->squares().size(), 2u);
    EXPECT_EQ(row->squares()[1]->squaresMask(), 1u << 14);
    EXPECT_TRUE(Tacter::isSquareSelected(17, row));
    EXPECT_FALSE(Tacter::isSquareSelected(40, row));
    EXPECT_EQ(row->squares().size(), 2u);
    Tacter::setSquare(50, row, false);  // clearing beyond the chain still grows it
    EXPECT_EQ(row->squares().size(), 4u);
    EXPECT_FALSE(store->hasChanges());
    reopen();
    auto* again = store->all<TrackLoop>()[0];
    ASSERT_EQ(again->squares().size(), 4u);
    EXPECT_TRUE(Tacter::isSquareSelected(17, again));
    TrackLoop* bare = dater().createTrackLoopWithLoop(again->loop(), {}, 1, 1);
    EXPECT_DEATH(Tacter::isSquareSelected(0, bare), "without square blocks");
}
