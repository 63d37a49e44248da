#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <set>
#include <sstream>

#include "library/CoreDater.h"
#include "library/content/OpenedLibrary.h"
#include "library/content/Prepopulator.h"
#include "library/media/Filer.h"
#include "library/patterns/Tacter.h"
#include "library/store/LibraryStore.h"
#include "tests/library/LogCapture.h"

namespace {

CoreDater& dater() { return CoreDater::shIns(); }

size_t countOf(const char* entity) { return dater().getAllItemsOfEntity(entity).size(); }

Loop* loopNamed(const std::string& name) { return static_cast<Loop*>(dater().findEntity("Loop", name)); }

// "sound mask volume" per row, top first.
std::vector<std::string> rowsOf(const Loop* loop) {
    std::vector<std::string> rows;
    for (const Instrument* i : loop->instruments()) {
        char text[96];
        std::snprintf(text, sizeof text, "%s %04X %d", i->sound()->name().c_str(), i->tactsMask(), i->volume());
        rows.emplace_back(text);
    }
    return rows;
}

// "loop blocks volume colour" per row, top first.
std::vector<std::string> rowsOf(const Track* track) {
    std::vector<std::string> rows;
    for (const TrackLoop* t : track->trackloops()) {
        std::ostringstream row;
        row << (t->loop() ? t->loop()->name() : "-") << std::hex;
        for (const LoopSquares* b : t->squares()) row << ' ' << b->squaresMask();
        row << std::dec << ' ' << t->volume() << ' ' << t->color();
        rows.push_back(row.str());
    }
    return rows;
}

// Everything the lists and players see, in list order.
std::string describeLibrary() {
    std::ostringstream out;
    for (ManagedObject* o : dater().getAllItemsOfEntity("SoundFolder")) {
        auto* f = static_cast<SoundFolder*>(o);
        out << "SF " << f->name() << ' ' << f->opened() << '\n';
        for (Sound* s : f->items()) out << "  " << s->name() << ' ' << s->color() << ' ' << s->artist() << s->preloaded() << '\n';
    }
    for (ManagedObject* o : dater().getAllItemsOfEntity("LoopFolder")) {
        auto* f = static_cast<LoopFolder*>(o);
        out << "LF " << f->name() << ' ' << f->opened() << '\n';
        for (Loop* l : f->items()) {
            out << "  " << l->name() << ' ' << l->bpm() << ' ' << l->artist() << l->preloaded() << '\n';
            for (const std::string& r : rowsOf(l)) out << "    " << r << '\n';
        }
    }
    for (ManagedObject* o : dater().getAllItemsOfEntity("Track")) {
        auto* t = static_cast<Track*>(o);
        out << "T " << t->name() << ' ' << t->bpm() << ' ' << t->squaresnum() << ' ' << t->inFolder()->name() << '\n';
        for (const std::string& r : rowsOf(t)) out << "  " << r << '\n';
    }
    return out.str();
}

class BuiltInContentTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
    void TearDown() override { Filer::setDocumentsDirectory(""); }
    std::unique_ptr<OpenedLibrary> open() { return OpenedLibrary::open(dir_.path().toStdString() + "/lib"); }
    void deleteSound(Sound* s) {
        dater().deleteAllInstrumentsOfSound(s);
        dater().deleteObject(s);
        dater().save();
    }

    QTemporaryDir dir_;
};

TEST_F(BuiltInContentTest, FirstOpenCreatesTheWholeLibrary) {
    LogCapture log;
    auto library = open();
    EXPECT_TRUE(library->createdBuiltInContent());
    EXPECT_TRUE(log.contains("baseIsEmpty"));
    EXPECT_EQ(Filer::documentsDirectory(), library->folder());

    EXPECT_EQ(countOf("Sound"), 88u);  // every loop row found its sound: none made implicitly
    EXPECT_EQ(countOf("SoundFolder"), 12u);
    EXPECT_EQ(countOf("Loop"), 18u);
    EXPECT_EQ(countOf("Track"), 2u);
    EXPECT_EQ(static_cast<Sound*>(dater().getAllItemsOfEntity("Sound")[0])->name(), "Wooden drum");
    EXPECT_EQ(static_cast<Loop*>(dater().getAllItemsOfEntity("Loop")[0])->name(), "Anxious pads");
    EXPECT_EQ(static_cast<Track*>(dater().getAllItemsOfEntity("Track")[0])->name(), "Weird 140");

    std::set<std::string> opened;
    for (ManagedObject* o : dater().getAllItemsOfEntity("SoundFolder")) {
        if (static_cast<SoundFolder*>(o)->opened()) opened.insert(static_cast<SoundFolder*>(o)->name());
    }
    for (ManagedObject* o : dater().getAllItemsOfEntity("LoopFolder")) {
        if (static_cast<LoopFolder*>(o)->opened()) opened.insert(static_cast<LoopFolder*>(o)->name());
    }
    EXPECT_EQ(opened, (std::set<std::string>{"Drums", "Vocals", "Bass Piano", "Built-in loops"}));

    Sound* ou = dater().findSoundWithName("Ou Db");
    EXPECT_TRUE(ou->preloaded());
    EXPECT_EQ(ou->artist(), "Iska Tormena");
    EXPECT_EQ(dater().findSoundWithName("Clean Bass A")->color(), 96);
    EXPECT_EQ(dater().findSoundWithName("Crowd")->artist(), "Unknown artist");
    EXPECT_EQ(loopNamed("weird2")->inFolder()->name(), "Weird loops");
    EXPECT_EQ(loopNamed("ktbeat 1")->artist(), "Ardo Velmin");
}

TEST_F(BuiltInContentTest, LoopsAndTracksMatchTheirScores) {
    auto library = open();
    Loop* easy = loopNamed("Easy beat 95");
    EXPECT_EQ(easy->bpm(), 90);
    EXPECT_TRUE(easy->preloaded());
    EXPECT_EQ(rowsOf(easy), (std::vector<std::string>{"Kick 80A0 100", "Snare 0808 100", "Hah 0002 40",
                                                      "Closed Hat 2020 60", "Open Hat 0200 40",
                                                      "Backspin end 0200 40"}));
    Loop* weird3 = loopNamed("weird3");
    EXPECT_EQ(rowsOf(weird3), (std::vector<std::string>{"Tribal drum 0800 100", "Wooden drum 8020 100",
                                                        "Bass Piano C 8008 35", "Bass Piano F 0080 35",
                                                        "Fat 000F 70", "Fat 0AA0 30"}));
    EXPECT_EQ(weird3->instruments()[4]->sound(), weird3->instruments()[5]->sound());
    Loop* pads = loopNamed("Anxious pads");
    EXPECT_EQ(pads->bpm(), 100);
    EXPECT_EQ(rowsOf(pads)[5], "Sax A long 0800 6");
    EXPECT_EQ(rowsOf(loopNamed("Basses 110"))[1], "Reverb Bass D FF00 70");

    auto* hotel = static_cast<Track*>(dater().findEntity("Track", "Dorn Ashby Hotel"));
    EXPECT_EQ(hotel->bpm(), 90);
    EXPECT_EQ(hotel->squaresnum(), 16);
    EXPECT_TRUE(hotel->preloaded());
    EXPECT_EQ(hotel->inFolder()->name(), "Built-in tracks");
    EXPECT_EQ(rowsOf(hotel), (std::vector<std::string>{"ktbeat 1 eeee 100 97", "ktbeat 2 1111 100 95",
                                                       "ktsmpl 1 e00 100 7", "ktsmpl 2 1100 100 4",
                                                       "ktsxs 1 ea 36 36", "ktsxs 2 11 36 39", "ktsxs 3 4 36 41"}));
    auto* weird = static_cast<Track*>(dater().findEntity("Track", "Weird 140"));
    EXPECT_EQ(weird->bpm(), 140);
    EXPECT_EQ(rowsOf(weird), (std::vector<std::string>{"weird1 ee10 100 50", "weird2 1040 100 131",
                                                       "weird3 101 100 84", "weird4 ae 100 110"}));
}

TEST_F(BuiltInContentTest, ReopeningKeepsTheLibraryAndRefillsOnlyWithoutSounds) {
    std::string before;
    {
        auto library = open();
        before = describeLibrary();
    }
    {
        auto library = open();
        EXPECT_FALSE(library->createdBuiltInContent());
        EXPECT_EQ(describeLibrary(), before);
        // Keep one sound: that is still the user's library.
        std::vector<ManagedObject*> sounds = dater().getAllItemsOfEntity("Sound");
        for (size_t i = 1; i < sounds.size(); ++i) deleteSound(static_cast<Sound*>(sounds[i]));
    }
    {
        auto library = open();
        EXPECT_FALSE(library->createdBuiltInContent());
        EXPECT_EQ(countOf("Sound"), 1u);
        EXPECT_EQ(rowsOf(loopNamed("weird3")), std::vector<std::string>{"Wooden drum 8020 100"});
        deleteSound(static_cast<Sound*>(dater().getAllItemsOfEntity("Sound")[0]));
        dater().createPreloaded(false, "Mine", 120, {}, "My loops", "Me");
    }
    auto library = open();
    EXPECT_TRUE(library->createdBuiltInContent());
    EXPECT_EQ(countOf("Sound"), 88u);
    EXPECT_EQ(rowsOf(static_cast<Loop*>(dater().getAllItemsOfEntity("Loop")[0]))[5], "Sax A long 0800 6");
    ASSERT_NE(loopNamed("Mine"), nullptr);
    EXPECT_FALSE(loopNamed("Mine")->inFolder()->opened());
}

TEST_F(BuiltInContentTest, RefillGivesTheBuiltInLoopsAndTracksTheirContentBackInPlace) {
    std::string hotelRows;
    int64_t hotelId = 0, beatId = 0;
    {
        auto library = open();
        auto* hotel = static_cast<Track*>(dater().findEntity("Track", "Dorn Ashby Hotel"));
        hotelRows = ::testing::PrintToString(rowsOf(hotel));
        hotelId = hotel->objectID();
        beatId = loopNamed("ktbeat 1")->objectID();
        // The user's own loop and a user copy of a built-in track.
        dater().createPreloaded(false, "Mine", 120, {dater().createInstrumentWithSound("Kick", 0x8000, 90)}, "My loops",
                                "Me");
        dater().createUsersTrackThatCopyOfPreloadedTrack(hotel);
        for (ManagedObject* o : dater().getAllItemsOfEntity("Sound")) deleteSound(static_cast<Sound*>(o));
    }
    auto library = open();
    EXPECT_TRUE(library->createdBuiltInContent());
    EXPECT_EQ(countOf("Sound"), 88u);
    EXPECT_EQ(countOf("Loop"), 19u);  // no second set of built-in loops
    EXPECT_EQ(countOf("Track"), 3u);
    EXPECT_EQ(loopNamed("ktbeat 1")->objectID(), beatId);
    auto* hotel = static_cast<Track*>(dater().findEntity("Track", "Dorn Ashby Hotel"));
    EXPECT_EQ(hotel->objectID(), hotelId);
    EXPECT_EQ(::testing::PrintToString(rowsOf(hotel)), hotelRows);
    for (const TrackLoop* row : hotel->trackloops()) EXPECT_FALSE(row->loop()->instruments().empty());
    // User items are left as the deletion left them.
    EXPECT_TRUE(loopNamed("Mine")->instruments().empty());
    auto* copy = static_cast<Track*>(dater().findEntity("Track", "Dorn Ashby Hotel 2"));
    ASSERT_NE(copy, nullptr);
    EXPECT_FALSE(copy->preloaded());
    EXPECT_EQ(::testing::PrintToString(rowsOf(copy)), hotelRows);  // it plays the refilled loops too
}

TEST_F(BuiltInContentTest, GeneratorPrintsUserLoopsAndTracksOnly) {
    auto library = open();
    EXPECT_EQ(Prepopulator::printLoops(), "\n\n");
    EXPECT_EQ(Prepopulator::printTracks(), "\n\n");

    std::vector<Instrument*> rows = {dater().createInstrumentWithSound("Kick", Tacter::tacts("1-------1-1-----"), 100),
                                     dater().createInstrumentWithSound("Open Hat", 0x0200, 40)};
    Loop* beat = dater().createPreloaded(false, "My beat", 90, rows, "My loops", "Me");
    dater().createPreloaded(false, "Re Kick", 120, {dater().createInstrumentWithSound("Kick", 0x0001, 7)},
                            "Built-in loops", "Me");
    TrackLoop* row = dater().createTrackLoopWithLoop(beat, {dater().loopSqrsWithSquares(0x8000)}, 80, 12);
    Tacter::setSquare(20, row, true);
    dater().createPreloaded(false, "My song", 120, 32, {row}, "My tracks", "Me");

    std::string loops =
        "\n\n"
        "\n\n+ (void) createLoopReKick {\n"
        "\nInstrument *Kick = [[CoreDater shIns] createInstrumentWithSound:@\"Kick\" tacts:[Tacter "
        "tacts:@\"---------------1\"] volum:7];"
        "\n[[CoreDater shIns] createPreloadedLoop:@\"Re Kick\" bpm:120 instruments:[NSOrderedSet "
        "orderedSetWithObjects:Kick, nil] inFolder:kFolderNameBuiltinLoops artist:kVelminName];"
        "\n}"
        "\n\n+ (void) createLoopMybeat {\n"
        "\nInstrument *Kick = [[CoreDater shIns] createInstrumentWithSound:@\"Kick\" tacts:[Tacter "
        "tacts:@\"1-------1-1-----\"] volum:100];"
        "\nInstrument *OpenHat = [[CoreDater shIns] createInstrumentWithSound:@\"Open Hat\" tacts:[Tacter "
        "tacts:@\"------1---------\"] volum:40];"
        "\n[[CoreDater shIns] createPreloadedLoop:@\"My beat\" bpm:90 instruments:[NSOrderedSet "
        "orderedSetWithObjects:Kick,OpenHat, nil] inFolder:@\"My loops\" artist:kVelminName];"
        "\n}";
    std::string tracks =
        "\n\n"
        "\n\n+ (void) createTrackMysong {\n\n"
        "\nLoop *Mybeat = (Loop*)[[CoreDater shIns] findEntity:@\"Loop\" WithName:@\"My beat\"];"
        "\nLoopSquares *Mybeat0 = [[CoreDater shIns] loopSqrsWithSquares:[Tacter tacts:@\"1---------------\"]];"
        "\nLoopSquares *Mybeat1 = [[CoreDater shIns] loopSqrsWithSquares:[Tacter tacts:@\"----1-----------\"]];"
        "\nTrackLoop *Mybeattlup = [[CoreDater shIns] createTrackLoopWithLoop:Mybeat squares:[NSOrderedSet "
        "orderedSetWithObjects:Mybeat0,Mybeat1, nil] volum:80 color:12];\n"
        "\n[[CoreDater shIns] createPreloadedTrack:@\"My song\" bpm:120 squaresnum:32 withTrackLoops:[NSOrderedSet "
        "orderedSetWithObjects:Mybeattlup, nil] artist:kVelminName];\n";
    EXPECT_EQ(Prepopulator::printLoops(), loops);
    EXPECT_EQ(Prepopulator::printTracks(), tracks);
    LogCapture log;
    EXPECT_EQ(Prepopulator::printLoopSAnfdtracks(), loops + tracks);
    EXPECT_EQ(log.lines(), std::vector<std::string>{loops + tracks});
}

}  // namespace
