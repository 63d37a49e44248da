#include "library/content/Prepopulator.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <vector>

#include "library/CoreDater.h"
#include "library/patterns/Tacter.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"

namespace {

constexpr const char* kDornAshbyLoops = "Dorn Ashby loops";
constexpr const char* kWeirdLoops = "Weird loops";

struct SoundEntry {
    const char* name;
    int16_t color;
};

// One folder of built-in sounds, created in the order given. Folder names are
// used as written; the artist is a localisation key.
void addSounds(const char* folder, const char* artistKey, std::initializer_list<SoundEntry> sounds) {
    CoreDater& dater = CoreDater::shIns();
    std::string artist = localized(artistKey);
    for (const SoundEntry& s : sounds) dater.createPreloadedSound(s.name, s.color, folder, artist);
}

struct InstrumentEntry {
    const char* sound;
    const char* steps;  // sixteen steps, "1" on, "-" off
    int16_t volume;
};

// The built-in item of that kind and name, if the library still has it.
template <class T>
T* builtInNamed(const char* entity, const std::string& name) {
    for (ManagedObject* o : CoreDater::shIns().getAllItemsOfEntity(entity)) {
        auto* item = static_cast<T*>(o);
        if (item->preloaded() && item->name() == name) return item;
    }
    return nullptr;
}

// A built-in loop: its instruments first, top row first, then the loop. When
// the library still holds the built-in loop of that name (its sounds were all
// deleted, and with them its rows), that loop gets its rows back in place, so
// names stay unique and the tracks that play it play it again. A user item
// that happens to have the name is left alone; the new loop is numbered.
void addLoop(const char* name, int16_t bpm, const std::string& folder, std::initializer_list<InstrumentEntry> rows) {
    CoreDater& dater = CoreDater::shIns();
    std::vector<Instrument*> instruments;
    for (const InstrumentEntry& r : rows) {
        instruments.push_back(dater.createInstrumentWithSound(r.sound, Tacter::tacts(r.steps), r.volume));
    }
    const std::string artist = localized(Prepopulator::kVelminName);
    if (Loop* loop = builtInNamed<Loop>("Loop", name)) {
        dater.deleteAllInstrumentsOfLoop(loop);
        loop->setInstruments(instruments);
        loop->setBpm(bpm);
        loop->setArtist(artist);
        loop->setInFolder(dater.loopFolder(folder));
        CoreDater::updateDateOfLoop(loop);
        dater.save();
        return;
    }
    dater.createPreloadedLoop(Utly::changeNameOf("Loop", name), bpm, instruments, folder, artist);
}

std::string builtinLoops() { return localized(Prepopulator::kFolderNameBuiltinLoops); }

struct TrackEntry {
    const char* loop;
    const char* squares;  // squares 0 to 15, one block
    int16_t volume;
    int16_t color;
};

// A built-in track: each row plays a loop found by name (a row whose loop is
// missing still gets made, playing nothing).
// The rows play the built-in loops of those names (any loop of the name when
// there is no built-in one). A built-in track of the same name that the
// library still holds gets these rows in place of its own.
void addTrack(const char* name, int16_t bpm, int16_t squaresnum, std::initializer_list<TrackEntry> rows) {
    CoreDater& dater = CoreDater::shIns();
    std::vector<TrackLoop*> trackLoops;
    for (const TrackEntry& r : rows) {
        Loop* loop = builtInNamed<Loop>("Loop", r.loop);
        if (!loop) loop = static_cast<Loop*>(dater.findEntity("Loop", r.loop));
        LoopSquares* block = dater.loopSqrsWithSquares(Tacter::tacts(r.squares));
        trackLoops.push_back(dater.createTrackLoopWithLoop(loop, {block}, r.volume, r.color));
    }
    const std::string artist = localized(Prepopulator::kVelminName);
    if (Track* track = builtInNamed<Track>("Track", name)) {
        dater.deleteAllTrackLoopsOfTrack(track);
        track->setTrackloops(trackLoops);
        track->setBpm(bpm);
        track->setSquaresnum(squaresnum);
        track->setArtist(artist);
        track->setInFolder(dater.trackFolder(localized("Built-in tracks")));
        CoreDater::updateDateOfTrack(track);
        dater.save();
        return;
    }
    dater.createPreloadedTrack(Utly::changeNameOf("Track", name), bpm, squaresnum, trackLoops, artist);
}

}  // namespace

// ---- Sounds ----------------------------------------------------------------

void Prepopulator::createSounds() {
    addSoundsSFXs();
    addSoundsScratches();
    addSoundsHalo();
    addSoundsSaxs();
    addSoundsPads();
    addSoundsReverbBass();
    addSoundsVocals();
    addSoundsBassPiano();
    addSoundsGuitarChords();
    addSoundsGuitars();
    addSoundsCleanBass();
    addSoundsDrums();
    CoreDater& dater = CoreDater::shIns();
    for (ManagedObject* o : dater.getAllItemsOfEntity("SoundFolder")) {
        auto* folder = static_cast<SoundFolder*>(o);
        const std::string& name = folder->name();
        if (name != "Drums" && name != "Vocals" && name != "Bass Piano") folder->setOpened(false);
    }
    dater.save();
}

void Prepopulator::addSoundsSFXs() {
    addSounds("SFX", kUnknownArtist,
              {{"Crowd", 134}, {"Ha Ab", 132}, {"Ha C", 131}, {"Washer", 128}, {"Spraypaint", 121},
               {"Spraypaint shake", 123}});
}

void Prepopulator::addSoundsScratches() {
    addSounds("Scratches", kUnknownArtist, {{"Scratch", 122}, {"Backspin", 119}, {"Backspin end", 117}});
}

void Prepopulator::addSoundsHalo() {
    addSounds("Halo", kUnknownArtist, {{"Halo C", 104}, {"Halo D long", 106}, {"Halo F", 107}});
}

void Prepopulator::addSoundsSaxs() {
    addSounds("Sax", kUnknownArtist,
              {{"Sax C long", 36}, {"Sax C", 37}, {"Sax D", 38}, {"Sax E", 39}, {"Sax F", 40}, {"Sax G", 41},
               {"Sax A long", 42}, {"Sax A", 43}, {"Sax B", 44}});
}

void Prepopulator::addSoundsPads() {
    addSounds("Pads", kUnknownArtist,
              {{"Organ E", 18}, {"Organ F long", 19}, {"Organ F", 20}, {"Organ pad G", 21}, {"Synth pad D", 23},
               {"Synth pad Eb", 24}, {"Synth pad E", 25}, {"Synth pad F", 26}});
}

void Prepopulator::addSoundsReverbBass() {
    addSounds("Reverb Bass", kUnknownArtist, {{"Reverb Bass F", 112}, {"Reverb Bass D", 110}, {"Reverb Bass C", 108}});
}

void Prepopulator::addSoundsVocals() {
    addSounds("Vocals", kTormenaName,
              {{"Ou Db", 0}, {"Ou D", 1}, {"Ouoo Db", 2}, {"Ouoo poly C", 3}, {"Ouoo poly D", 4}, {"Ouoo poly Eb", 5},
               {"Ouoo poly E", 6}, {"Uuuuu D", 7}, {"Uuuuu E", 8}});
}

void Prepopulator::addSoundsBassPiano() {
    addSounds("Bass Piano", kTormenaName,
              {{"Bass Piano C high", 89}, {"Bass Piano B", 88}, {"Bass Piano A", 87}, {"Bass Piano G", 86},
               {"Bass Piano F", 85}, {"Bass Piano E", 84}, {"Bass Piano D", 83}, {"Bass Piano C", 81}});
}

void Prepopulator::addSoundsGuitarChords() {
    addSounds("Guitar chords", kTormenaName,
              {{"Guitar A chord", 135}, {"Guitar Am chord", 136}, {"Guitar C chord", 137}, {"Guitar D chord", 138},
               {"Guitar Dm chord", 139}, {"Guitar E chord", 140}, {"Guitar Em chord", 141}, {"Guitar F chord", 142},
               {"Guitar G chord", 143}});
}

void Prepopulator::addSoundsGuitars() {
    addSounds("Guitar", kTormenaName,
              {{"Guitar C", 27}, {"Guitar D", 29}, {"Guitar E", 31}, {"Guitar F", 32}, {"Guitar G", 33},
               {"Guitar A", 34}, {"Guitar B", 35}});
}

void Prepopulator::addSoundsCleanBass() {
    // "Clean Bass Ab" and "Clean Bass A" share a colour.
    addSounds("Clean Bass", kUnknownArtist,
              {{"Clean Bass C", 90}, {"Clean Bass D", 91}, {"Clean Bass E", 92}, {"Clean Bass F", 93},
               {"Clean Bass Gb", 94}, {"Clean Bass G", 95}, {"Clean Bass Ab", 96}, {"Clean Bass A", 96},
               {"Clean Bass Bb", 97}, {"Clean Bass B", 98}});
}

void Prepopulator::addSoundsDrums() {
    addSounds("Drums", kUnknownArtist,
              {{"Kick", 57}, {"Snare", 54}, {"Closed Hat", 59}, {"Open Hat", 61}, {"Open Hat long", 62}, {"Fat", 63},
               {"Kick IDM", 65}, {"Clap", 67}, {"Hah", 68}, {"Snap", 70}, {"Tambourine", 71}, {"Tribal drum", 45},
               {"Wooden drum", 49}});
}

// ---- Loops -----------------------------------------------------------------

void Prepopulator::createLoops() {
    createLoopktsxs3();
    createLoopktsxs1();
    createLoopktsxs2();
    createLoopktsmpl2();
    createLoopktsmpl1();
    createLoopktbeat2();
    createLoopktbeat1();
    createLoopweird1();
    createLoopweird2();
    createLoopweird3();
    createLoopweird4();
    createLoopEasybeat95();
    createLoopAmFCE50();
    createLoopdcsaxes90();
    createLoopdcbasses110();
    createLoopGuitarize85();
    createLoopSpring90();
    createLoopAnxiouspads();
    CoreDater& dater = CoreDater::shIns();
    std::string keepOpen = builtinLoops();
    for (ManagedObject* o : dater.getAllItemsOfEntity("LoopFolder")) {
        auto* folder = static_cast<LoopFolder*>(o);
        if (folder->name() != keepOpen) folder->setOpened(false);
    }
    dater.save();
}

void Prepopulator::createLoopktsxs3() {
    addLoop("ktsxs 3", 90, kDornAshbyLoops,
            {{"Sax F", "1-------1-------", 55},
             {"Sax C", "------1-------1-", 55},
             {"Organ E", "1-1-----1-1-----", 70},
             {"Organ F", "-----1----------", 70}});
}

void Prepopulator::createLoopktsxs1() {
    addLoop("ktsxs 1", 90, kDornAshbyLoops,
            {{"Sax E", "1-------1-------", 55},
             {"Sax C", "--------------1-", 55},
             {"Sax F", "---1-------1----", 55},
             {"Organ E", "1-1-----1-1-----", 70}});
}

void Prepopulator::createLoopktsxs2() {
    addLoop("ktsxs 2", 90, kDornAshbyLoops,
            {{"Guitar D", "1-11----1-------", 40},
             {"Sax F", "------1-------1-", 55},
             {"Ou Db", "---1------------", 60},
             {"Organ E", "1-1-----1-1-----", 70},
             {"Guitar F", "--------------1-", 80}});
}

void Prepopulator::createLoopktsmpl2() {
    addLoop("ktsmpl 2", 90, kDornAshbyLoops,
            {{"Ou Db", "--------1-------", 60},
             {"Ou D", "------------1---", 60}});
}

void Prepopulator::createLoopktsmpl1() {
    addLoop("ktsmpl 1", 90, kDornAshbyLoops,
            {{"Ouoo Db", "--------1-------", 60},
             {"Ouoo poly D", "1---------------", 60}});
}

void Prepopulator::createLoopktbeat2() {
    addLoop("ktbeat 2", 90, kDornAshbyLoops,
            {{"Kick", "1-1-----1-1-----", 100},
             {"Hah", "------1-------1-", 30},
             {"Tambourine", "------1-------11", 70},
             {"Snare", "----1-------1-11", 100},
             {"Open Hat long", "----1-------1---", 45},
             {"Bass Piano E", "1---------------", 70},
             {"Bass Piano C", "--------1-------", 70},
             {"Reverb Bass C", "------------1111", 60}});
}

void Prepopulator::createLoopktbeat1() {
    addLoop("ktbeat 1", 90, kDornAshbyLoops,
            {{"Kick", "1-1-----1-1-----", 100},
             {"Hah", "--------------1-", 30},
             {"Tambourine", "------1-------1-", 70},
             {"Snare", "----1-------1---", 100},
             {"Bass Piano D", "1---------------", 70}});
}

void Prepopulator::createLoopweird1() {
    addLoop("weird1", 140, kWeirdLoops,
            {{"Tribal drum", "----1-----------", 100},
             {"Wooden drum", "1---------1-----", 100},
             {"Bass Piano C", "1-----------1---", 35},
             {"Bass Piano E", "--------1-------", 35},
             {"Washer", "------------1---", 100},
             {"Backspin end", "----1-----------", 60},
             {"Reverb Bass C", "--------1-----1-", 100}});
}

void Prepopulator::createLoopweird2() {
    addLoop("weird2", 140, kWeirdLoops,
            {{"Tribal drum", "----1-----------", 100},
             {"Wooden drum", "1---------1-----", 100},
             {"Bass Piano C", "1-----------1---", 35},
             {"Bass Piano G", "--------1-------", 35},
             {"Scratch", "------------1---", 95}});
}

void Prepopulator::createLoopweird3() {
    // Two rows play "Fat", with different steps and volumes.
    addLoop("weird3", 140, kWeirdLoops,
            {{"Tribal drum", "----1-----------", 100},
             {"Wooden drum", "1---------1-----", 100},
             {"Bass Piano C", "1-----------1---", 35},
             {"Bass Piano F", "--------1-------", 35},
             {"Fat", "------------1111", 70},
             {"Fat", "----1-1-1-1-----", 30}});
}

void Prepopulator::createLoopweird4() {
    addLoop("weird4", 140, kWeirdLoops,
            {{"Tribal drum", "----1-------1---", 100},
             {"Wooden drum", "1-1-------1-----", 100},
             {"Bass Piano F", "1-----------1---", 35},
             {"Bass Piano E", "--------1-------", 35},
             {"Washer", "------------1---", 100},
             {"Backspin end", "----1-----------", 60},
             {"Reverb Bass F", "--------1-----1-", 100}});
}

void Prepopulator::createLoopEasybeat95() {
    // Named 95, plays at 90: both as they have always been.
    addLoop("Easy beat 95", 90, builtinLoops(),
            {{"Kick", "1-------1-1-----", 100},
             {"Snare", "----1-------1---", 100},
             {"Hah", "--------------1-", 40},
             {"Closed Hat", "--1-------1-----", 60},
             {"Open Hat", "------1---------", 40},
             {"Backspin end", "------1---------", 40}});
}

void Prepopulator::createLoopAmFCE50() {
    addLoop("Chords 50", 50, builtinLoops(),
            {{"Guitar Am chord", "1---------------", 100},
             {"Guitar F chord", "----1-----------", 100},
             {"Guitar C chord", "--------1-------", 100},
             {"Guitar E chord", "------------1---", 100}});
}

void Prepopulator::createLoopdcsaxes90() {
    addLoop("Saxes 90", 90, builtinLoops(),
            {{"Sax D", "1-------1-------", 60},
             {"Sax C long", "----1-----------", 60},
             {"Guitar Dm chord", "1-------1-------", 70},
             {"Wooden drum", "--------------11", 100},
             {"Snare", "1-------1-------", 100},
             {"Kick IDM", "--1-------1-----", 70},
             {"Closed Hat", "----1-------1---", 70}});
}

void Prepopulator::createLoopdcbasses110() {
    addLoop("Basses 110", 110, builtinLoops(),
            {{"Kick", "1---1---1---1---", 100},
             {"Reverb Bass D", "11111111--------", 70},
             {"Scratch", "--------------1-", 40},
             {"Reverb Bass C", "--------11111111", 70},
             {"Fat", "------11--------", 100},
             {"Hah", "--------1-------", 40},
             {"Closed Hat", "--1-------1-----", 70}});
}

void Prepopulator::createLoopGuitarize85() {
    addLoop("Guitarize 85", 85, builtinLoops(),
            {{"Kick", "1-11----1-11----", 100},
             {"Snare", "----1-----------", 100},
             {"Clap", "------------1---", 100},
             {"Open Hat", "--------------1-", 55},
             {"Closed Hat", "------1---------", 55},
             {"Guitar E", "----11-1--------", 40},
             {"Guitar B", "--------------1-", 40},
             {"Guitar G", "1---------------", 50}});
}

void Prepopulator::createLoopSpring90() {
    addLoop("Spring 90", 90, builtinLoops(),
            {{"Guitar B", "------------1---", 10},
             {"Wooden drum", "----1---------11", 100},
             {"Kick IDM", "----1-----------", 100},
             {"Guitar G chord", "--------1-------", 18},
             {"Halo D long", "----1-----------", 70},
             {"Tambourine", "1-----------1---", 100},
             {"Uuuuu D", "1---------------", 70},
             {"Clap", "--------1-------", 20}});
}

void Prepopulator::createLoopAnxiouspads() {
    // "Sax A long" is meant to be barely audible.
    addLoop("Anxious pads", 100, builtinLoops(),
            {{"Synth pad Eb", "------------1--1", 100},
             {"Synth pad D", "----1-----------", 100},
             {"Kick", "1-1-1---1-1-1---", 100},
             {"Closed Hat", "--1-------1-----", 80},
             {"Organ F long", "1---------1-----", 100},
             {"Sax A long", "----1-----------", 6},
             {"Fat", "--------------1-", 100}});
}

// ---- Tracks ----------------------------------------------------------------

void Prepopulator::createTracks() {
    createTrackDornAshbyHotel();
    createTrackWeird140();
}

void Prepopulator::createTrackDornAshbyHotel() {
    addTrack("Dorn Ashby Hotel", 90, 16,
             {{"ktbeat 1", "111-111-111-111-", 100, 97},
              {"ktbeat 2", "---1---1---1---1", 100, 95},
              {"ktsmpl 1", "----111---------", 100, 7},
              {"ktsmpl 2", "---1---1--------", 100, 4},
              {"ktsxs 1", "--------111-1-1-", 36, 36},
              {"ktsxs 2", "-----------1---1", 36, 39},
              {"ktsxs 3", "-------------1--", 36, 41}});
}

void Prepopulator::createTrackWeird140() {
    addTrack("Weird 140", 140, 16,
             {{"weird1", "111-111----1----", 100, 50},
              {"weird2", "---1-----1------", 100, 131},
              {"weird3", "-------1-------1", 100, 84},
              {"weird4", "--------1-1-111-", 100, 110}});
}

// ---- Generator -------------------------------------------------------------

namespace {

__attribute__((format(printf, 2, 3))) void appendf(std::string& out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (n > 0) {
        size_t at = out.size();
        out.resize(at + static_cast<size_t>(n) + 1);
        std::vsnprintf(out.data() + at, static_cast<size_t>(n) + 1, format, args);
        out.resize(at + static_cast<size_t>(n));
    }
    va_end(args);
}

// A name as a source identifier: the name with its spaces taken out.
std::string withoutSpaces(const std::string& name) {
    std::string out;
    for (char c : name) {
        if (c != ' ') out.push_back(c);
    }
    return out;
}

// "[NSOrderedSet orderedSetWithObjects:a,b, nil]"
std::string orderedSetText(const std::vector<std::string>& variables) {
    std::string out = "[NSOrderedSet orderedSetWithObjects:";
    for (const std::string& v : variables) appendf(out, "%s,", v.c_str());
    out += " nil]";
    return out;
}

}  // namespace

std::string Prepopulator::printLoopSAnfdtracks() {
    std::string text = printLoops() + printTracks();
    qlog("%s", text.c_str());
    return text;
}

std::string Prepopulator::printLoops() {
    std::string out = "\n\n";
    for (ManagedObject* o : CoreDater::shIns().getAllItemsOfEntity("Loop")) {
        auto* loop = static_cast<Loop*>(o);
        if (loop->preloaded()) continue;
        appendf(out, "\n\n+ (void) createLoop%s {\n", withoutSpaces(loop->name()).c_str());
        std::vector<std::string> variables;
        for (Instrument* instrument : loop->instruments()) {
            std::string soundName = instrument->sound() ? instrument->sound()->name() : std::string();
            std::string variable = withoutSpaces(soundName);
            appendf(out,
                    "\nInstrument *%s = [[CoreDater shIns] createInstrumentWithSound:@\"%s\" tacts:[Tacter tacts:%s] "
                    "volum:%d];",
                    variable.c_str(), soundName.c_str(), Tacter::printBinary(instrument->tactsMask()).c_str(),
                    instrument->volume());
            variables.push_back(variable);
        }
        std::string folder;
        const LoopFolder* inFolder = loop->inFolder();
        std::string folderName = inFolder ? inFolder->name() : std::string();
        if (folderName == localized(kFolderNameBuiltinLoops) || folderName == "Preloaded") {
            folder = "kFolderNameBuiltinLoops";
        } else {
            appendf(folder, "@\"%s\"", folderName.c_str());
        }
        appendf(out,
                "\n[[CoreDater shIns] createPreloadedLoop:@\"%s\" bpm:%d instruments:%s inFolder:%s "
                "artist:kVelminName];",
                loop->name().c_str(), loop->bpm(), orderedSetText(variables).c_str(), folder.c_str());
        out += "\n}";
    }
    return out;
}

std::string Prepopulator::printTracks() {
    std::string out = "\n\n";
    for (ManagedObject* o : CoreDater::shIns().getAllItemsOfEntity("Track")) {
        auto* track = static_cast<Track*>(o);
        if (track->preloaded()) continue;
        appendf(out, "\n\n+ (void) createTrack%s {\n\n", withoutSpaces(track->name()).c_str());
        std::vector<std::string> rowVariables;
        for (TrackLoop* row : track->trackloops()) {
            std::string loopName = row->loop() ? row->loop()->name() : std::string();
            std::string loopVariable = withoutSpaces(loopName);
            appendf(out, "\nLoop *%s = (Loop*)[[CoreDater shIns] findEntity:@\"Loop\" WithName:@\"%s\"];",
                    loopVariable.c_str(), loopName.c_str());
            std::vector<std::string> blockVariables;
            int number = 0;
            for (LoopSquares* block : row->squares()) {
                std::string blockVariable;
                appendf(blockVariable, "%s%d", loopVariable.c_str(), number++);
                appendf(out, "\nLoopSquares *%s = [[CoreDater shIns] loopSqrsWithSquares:[Tacter tacts:%s]];",
                        blockVariable.c_str(), Tacter::printBinary(block->squaresMask()).c_str());
                blockVariables.push_back(blockVariable);
            }
            std::string rowVariable = loopVariable + "tlup";
            appendf(out,
                    "\nTrackLoop *%s = [[CoreDater shIns] createTrackLoopWithLoop:%s squares:%s volum:%d color:%d];\n",
                    rowVariable.c_str(), loopVariable.c_str(), orderedSetText(blockVariables).c_str(), row->volume(),
                    row->color());
            rowVariables.push_back(rowVariable);
        }
        appendf(out,
                "\n[[CoreDater shIns] createPreloadedTrack:@\"%s\" bpm:%d squaresnum:%d withTrackLoops:%s "
                "artist:kVelminName];\n",
                track->name().c_str(), track->bpm(), track->squaresnum(), orderedSetText(rowVariables).c_str());
    }
    return out;
}
