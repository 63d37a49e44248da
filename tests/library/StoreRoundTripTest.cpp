// Everything saved comes back: every attribute, every order, every inverse.
#include <sstream>

#include "library/patterns/Tacter.h"
#include "tests/library/TestStore.h"

namespace {

// A canonical text of the whole graph, both sides of every relationship included.
std::string describe(const LibraryStore& s) {
    std::ostringstream out;
    auto id = [](const ManagedObject* o) { return o ? std::to_string(o->objectID()) : std::string("-"); };
    auto ids = [&](const auto& list) {
        std::string t = "[";
        for (auto* o : list) t += id(o) + ",";
        return t + "]";
    };
    for (auto* f : s.all<SoundFolder>())
        out << "SF" << id(f) << f->name() << f->date() << f->opened() << ids(f->items()) << "\n";
    for (auto* f : s.all<LoopFolder>())
        out << "LF" << id(f) << f->name() << f->date() << f->opened() << ids(f->items()) << "\n";
    for (auto* f : s.all<TrackFolder>())
        out << "TF" << id(f) << f->name() << f->date() << f->opened() << ids(f->items()) << "\n";
    for (auto* x : s.all<Sound>())
        out << "S" << id(x) << x->name() << "|" << x->artist() << x->color() << "|" << x->date() << x->preloaded()
            << id(x->inFolder()) << ids(x->toInstruments()) << "\n";
    for (auto* x : s.all<Instrument>())
        out << "I" << id(x) << x->tacts() << "|" << x->volume() << id(x->inLoop()) << id(x->sound()) << "\n";
    for (auto* x : s.all<Loop>())
        out << "L" << id(x) << x->name() << "|" << x->artist() << x->bpm() << "|" << x->date() << x->preloaded()
            << id(x->inFolder()) << ids(x->instruments()) << ids(x->inTracks()) << "\n";
    for (auto* x : s.all<Track>())
        out << "T" << id(x) << x->name() << "|" << x->artist() << x->bpm() << "|" << x->squaresnum() << "|"
            << x->date() << x->preloaded() << id(x->inFolder()) << ids(x->trackloops()) << "\n";
    for (auto* x : s.all<TrackLoop>())
        out << "R" << id(x) << x->volume() << "|" << x->color() << id(x->inTrack()) << id(x->loop())
            << ids(x->squares()) << "\n";
    for (auto* x : s.all<LoopSquares>()) out << "Q" << id(x) << x->squares() << id(x->ofTrackLoop()) << "\n";
    return out.str();
}

}  // namespace

class StoreRoundTrip : public StoreTest {
protected:
    // Two folders of each kind, shared sounds and loops, several blocks, odd values.
    void buildLibrary() {
        auto& d = dater();
        d.createPreloadedSound("Kick", 57, "Drums", "Unknown artist");
        d.createPreloadedSound("Snare", 54, "Drums", "Unknown artist");
        d.createRecordedSound("Vox ü", -5, "My sounds");
        auto* loop = d.createPreloadedLoop(
            "Beat", 128,
            {d.createInstrumentWithSound("Kick", Tacter::tacts("1-------1-1-----")),
             d.createInstrumentWithSound("Snare", Tacter::tacts("----1-------1---"), 35),
             d.createInstrumentWithSound("Kick", Tacter::tacts("--------------11"), 0)},
            "Built-in loops", "Ardo");
        auto* other = d.createEmptyUsersLoop();
        other->setInstruments({d.createInstrumentWithSound("Vox ü", 0xFFFF, 100)});
        auto* row1 = d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0x8000), d.loopSqrsWithSquares(0x0001)},
                                               100, 97);
        auto* row2 = d.createTrackLoopWithLoop(other, {d.loopSqrsWithSquares(0xAAAA)}, 36, 143);
        auto* row3 = d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0x1234)}, 1, 0);
        d.createPreloadedTrack("Song", 140, 16, {row1, row2, row3}, "Ardo");
        auto* user = d.createEmptyUsersTrack();
        user->setTrackloops({d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0)}, 50, 7)});
        d.soundFolder("Drums")->setOpened(false);
        d.save();
    }
};

TEST_F(StoreRoundTrip, ReopenedStoreEqualsWhatWasSaved) {
    buildLibrary();
    std::string before = describe(*store);
    ASSERT_FALSE(store->hasChanges());
    reopen();
    EXPECT_EQ(describe(*store), before);
    EXPECT_EQ(store->all<Sound>().size(), 3u);
    EXPECT_EQ(store->all<TrackLoop>().size(), 4u);
}

TEST_F(StoreRoundTrip, ReordersAndDeletesAreSaved) {
    buildLibrary();
    auto* loop = static_cast<Loop*>(dater().findEntity("Loop", "Beat"));
    auto rows = loop->instruments();
    loop->setInstruments({rows[2], rows[0]});
    store->deleteObject(rows[1]);
    auto* track = static_cast<Track*>(dater().findEntity("Track", "Song"));
    dater().deleteAllTrackLoopsOfTrack(track);
    store->deleteObject(track);
    dater().save();
    std::string before = describe(*store);
    reopen();
    EXPECT_EQ(describe(*store), before);
    loop = static_cast<Loop*>(dater().findEntity("Loop", "Beat"));
    ASSERT_EQ(loop->instruments().size(), 2u);
    EXPECT_EQ(loop->instruments()[0]->tactsMask(), 0x0003);
    EXPECT_EQ(dater().findEntity("Track", "Song"), nullptr);
}

TEST_F(StoreRoundTrip, FailedSaveKeepsChangesForTheNextSave) {
    buildLibrary();
    store->limitPagesForTesting(1);  // the file is larger: every write now meets a full disk
    auto* sound = dater().findSoundWithName("Snare");
    for (int i = 0; i < 200; ++i) dater().createRecordedSound("Take " + std::to_string(i), 3, "Full");
    sound->setName("Snare renamed");
    LogCapture log;
    dater().save();
    EXPECT_TRUE(log.contains("Unresolved error "));
    EXPECT_TRUE(store->hasChanges());

    store->limitPagesForTesting(1 << 30);
    dater().save();
    EXPECT_FALSE(store->hasChanges());
    std::string before = describe(*store);
    reopen();
    EXPECT_EQ(describe(*store), before);
    EXPECT_NE(dater().findSoundWithName("Snare renamed"), nullptr);
    EXPECT_NE(dater().findSoundWithName("Take 199"), nullptr);
}
