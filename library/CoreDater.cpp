#include "library/CoreDater.h"

#include <algorithm>

#include "library/store/LibraryStore.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Dates.h"
#include "library/util/Log.h"

namespace {
constexpr int16_t kNewLoopBpm = 90;
constexpr int16_t kNewTrackBpm = 90;
constexpr int16_t kNewTrackSquares = 4;
constexpr int16_t kDefaultVolume = 100;
constexpr int16_t kImplicitSoundColor = 76;

double dateOf(const ManagedObject* o) {
    switch (o->entity()) {
    case Entity::Sound: return static_cast<const Sound*>(o)->date();
    case Entity::Loop: return static_cast<const Loop*>(o)->date();
    case Entity::Track: return static_cast<const Track*>(o)->date();
    case Entity::SoundFolder: return static_cast<const SoundFolder*>(o)->date();
    case Entity::LoopFolder: return static_cast<const LoopFolder*>(o)->date();
    case Entity::TrackFolder: return static_cast<const TrackFolder*>(o)->date();
    default: return 0;
    }
}

const std::string* nameOf(const ManagedObject* o) {
    switch (o->entity()) {
    case Entity::Sound: return &static_cast<const Sound*>(o)->name();
    case Entity::Loop: return &static_cast<const Loop*>(o)->name();
    case Entity::Track: return &static_cast<const Track*>(o)->name();
    case Entity::SoundFolder: return &static_cast<const SoundFolder*>(o)->name();
    case Entity::LoopFolder: return &static_cast<const LoopFolder*>(o)->name();
    case Entity::TrackFolder: return &static_cast<const TrackFolder*>(o)->name();
    default: return nullptr;
    }
}
}  // namespace

CoreDater& CoreDater::shIns() {
    static CoreDater instance;
    return instance;
}

bool CoreDater::save() {
    if (!store_) return false;
    if (batchDepth_ > 0) return true;
    StoreError error;
    bool saved = store_->save(&error);
    if (!saved) {
        qlog("Unresolved error %s, {%s}", error.description.c_str(), error.details.c_str());
        lastSaveError_ = error.description;
    }
    // A second, silent attempt, as every save makes.
    if (store_->save()) {
        saved = true;
        lastSaveError_.clear();
    }
    return saved;
}

bool CoreDater::endBatch(std::string* reason) {
    if (batchDepth_ > 0) --batchDepth_;
    if (batchDepth_ > 0) return true;
    bool saved = save();
    if (!saved && reason) *reason = lastSaveError_;
    return saved;
}

std::vector<ManagedObject*> CoreDater::getAllItemsOfEntity(const std::string& entity) {
    Entity e;
    if (!store_ || !entityFromName(entity, &e)) return {};
    std::vector<ManagedObject*> items = store_->objects(e);
    // Equal dates keep creation order, and objects are listed by ascending id.
    // (Not stable_sort: clang with Debian's libstdc++ 12 flags its temporary buffer.)
    std::sort(items.begin(), items.end(), [](const ManagedObject* a, const ManagedObject* b) {
        if (dateOf(a) != dateOf(b)) return dateOf(a) > dateOf(b);
        return a->objectID() < b->objectID();
    });
    return items;
}

ManagedObject* CoreDater::findEntity(const std::string& entity, const std::string& name) {
    Entity e;
    if (!store_ || !entityFromName(entity, &e)) return nullptr;
    for (ManagedObject* o : store_->objects(e)) {
        const std::string* n = nameOf(o);
        if (n && *n == name) return o;
    }
    return nullptr;
}

Sound* CoreDater::findSoundWithName(const std::string& name) {
    return static_cast<Sound*>(findEntity("Sound", name));
}

std::string CoreDater::userArtistsName() { return artistSource_ ? artistSource_() : localized("You"); }

std::string CoreDater::getNameForNewRecordedSound() { return getNameForNewUsers("Sound"); }

std::string CoreDater::getNameForNewUsers(const std::string& entity) {
    std::string base = localized(entity);
    for (int n = 1;; ++n) {
        std::string candidate = base + " " + std::to_string(n);
        if (!findEntity(entity, candidate)) return candidate;
    }
}

template <class F>
F* CoreDater::folderNamed(const std::string& name) {
    for (ManagedObject* o : store_->objects(F::kEntity)) {
        if (static_cast<F*>(o)->name() == name) return static_cast<F*>(o);
    }
    F* folder = store_->insert<F>();
    folder->setName(name);
    folder->setOpened(true);
    folder->setDate(nowSinceReferenceDate());
    save();
    return folder;
}

SoundFolder* CoreDater::soundFolder(const std::string& name) {
    return name.empty() ? nullptr : folderNamed<SoundFolder>(name);
}

LoopFolder* CoreDater::loopFolder(const std::string& name) {
    return name.empty() ? nullptr : folderNamed<LoopFolder>(name);
}

TrackFolder* CoreDater::trackFolder(const std::string& name) {
    return folderNamed<TrackFolder>(name.empty() ? localized("My tracks") : name);
}

Sound* CoreDater::createPreloadedSound(const std::string& name, int16_t color, const std::string& folder,
                                       const std::string& artist) {
    return createPreloaded(true, name, color, folder, artist);
}

Sound* CoreDater::createRecordedSound(const std::string& name, int16_t color, const std::string& folder) {
    return createPreloaded(false, name, color, folder, userArtistsName());
}

Sound* CoreDater::createPreloaded(bool preloaded, const std::string& name, int16_t color, const std::string& folder,
                                  const std::string& artist) {
    SoundFolder* f = soundFolder(folder);
    Sound* s = store_->insert<Sound>();
    s->setInFolder(f);
    s->setName(name);
    s->setColor(color);
    s->setArtist(artist);
    s->setPreloaded(preloaded);
    s->setDate(nowSinceReferenceDate());
    save();
    return s;
}

Instrument* CoreDater::createInstrumentWithSound(const std::string& soundName, uint16_t tacts) {
    return shIns().createInstrumentWithSound(soundName, tacts, kDefaultVolume);
}

Instrument* CoreDater::createInstrumentWithSound(const std::string& soundName, uint16_t tacts, int16_t volum) {
    Instrument* i = store_->insert<Instrument>();
    Sound* sound = findSoundWithName(soundName);
    if (!sound) {
        // An instrument never fails for want of a sound: it gets a new,
        // file-less one that the player will find no audio for.
        sound = createRecordedSound(soundName, kImplicitSoundColor, localized("My sounds"));
    }
    i->setVolume(volum);
    i->setSound(sound);
    i->setTactsMask(tacts);
    save();
    return i;
}

Loop* CoreDater::createPreloadedLoop(const std::string& name, int16_t bpm, const std::vector<Instrument*>& instruments,
                                     const std::string& folder, const std::string& artist) {
    return createPreloaded(true, name, bpm, instruments, folder, artist);
}

Loop* CoreDater::createPreloaded(bool preloaded, const std::string& name, int16_t bpm,
                                 const std::vector<Instrument*>& instruments, const std::string& folder,
                                 const std::string& artist) {
    LoopFolder* f = loopFolder(folder);
    Loop* l = store_->insert<Loop>();
    l->setInFolder(f);
    l->setName(name);
    l->setPreloaded(preloaded);
    l->setDate(nowSinceReferenceDate());
    l->setBpm(bpm);
    l->setInstruments(instruments);
    l->setArtist(artist);
    save();
    return l;
}

Loop* CoreDater::createEmptyUsersLoop() {
    return createPreloaded(false, getNameForNewUsers("Loop"), kNewLoopBpm, {}, localized("My loops"),
                           userArtistsName());
}

Loop* CoreDater::createUsersLoopThatCopyOfPreloadedLoop(Loop* loop) {
    return createUsersLoopThatCopyOfPreloadedLoop(loop, localized("My loops"));
}

Loop* CoreDater::createUsersLoopThatCopyOfPreloadedLoop(Loop* loop, const std::string& folder) {
    std::vector<Instrument*> copies;
    // Snapshot first: creating an instrument may create a sound, never a row of this loop.
    std::vector<Instrument*> source = loop->instruments();
    for (Instrument* i : source) {
        std::string soundName = i->sound() ? i->sound()->name() : std::string();
        copies.push_back(createInstrumentWithSound(soundName, i->tactsMask(), i->volume()));
    }
    std::string name = Utly::changeNameOf("Loop", loop->name());
    return createPreloaded(false, name, loop->bpm(), copies, folder, userArtistsName());
}

TrackLoop* CoreDater::createTrackLoopWithLoop(Loop* loop, const std::vector<LoopSquares*>& squares, int16_t volum,
                                              int16_t color) {
    TrackLoop* t = store_->insert<TrackLoop>();
    t->setLoop(loop);
    t->setSquares(squares);
    t->setVolume(volum);
    t->setColor(color);
    save();
    return t;
}

LoopSquares* CoreDater::loopSqrsWithSquares(uint16_t squares) {
    LoopSquares* b = store_->insert<LoopSquares>();
    b->setSquaresMask(squares);
    return b;
}

Track* CoreDater::createPreloadedTrack(const std::string& name, int16_t bpm, int16_t squaresnum,
                                       const std::vector<TrackLoop*>& trackLoops, const std::string& artist) {
    return createPreloaded(true, name, bpm, squaresnum, trackLoops, localized("Built-in tracks"), artist);
}

Track* CoreDater::createPreloaded(bool preloaded, const std::string& name, int16_t bpm, int16_t squaresnum,
                                  const std::vector<TrackLoop*>& trackLoops, const std::string& folder,
                                  const std::string& artist) {
    TrackFolder* f = trackFolder(folder);
    Track* t = store_->insert<Track>();
    t->setInFolder(f);
    t->setPreloaded(preloaded);
    t->setName(name);
    t->setBpm(bpm);
    t->setSquaresnum(squaresnum);
    t->setTrackloops(trackLoops);
    t->setDate(nowSinceReferenceDate());
    t->setArtist(artist);
    save();
    return t;
}

Track* CoreDater::createEmptyUsersTrack() {
    return createPreloaded(false, getNameForNewUsers("Track"), kNewTrackBpm, kNewTrackSquares, {},
                           localized("My tracks"), userArtistsName());
}

Track* CoreDater::createUsersTrackThatCopyOfPreloadedTrack(Track* track) {
    std::vector<TrackLoop*> rows;
    std::vector<TrackLoop*> source = track->trackloops();
    for (TrackLoop* row : source) {
        std::vector<LoopSquares*> blocks;
        for (LoopSquares* b : row->squares()) blocks.push_back(loopSqrsWithSquares(b->squaresMask()));
        rows.push_back(createTrackLoopWithLoop(row->loop(), blocks, row->volume(), row->color()));
    }
    std::string name = Utly::changeNameOf("Track", track->name());
    return createPreloaded(false, name, track->bpm(), track->squaresnum(), rows, localized("My tracks"),
                           userArtistsName());
}

void CoreDater::updateDateOfSound(Sound* sound) { sound->setDate(nowSinceReferenceDate()); }
void CoreDater::updateDateOfLoop(Loop* loop) { loop->setDate(nowSinceReferenceDate()); }
void CoreDater::updateDateOfTrack(Track* track) { track->setDate(nowSinceReferenceDate()); }

void CoreDater::deleteAllInstrumentsOfSound(Sound* sound) {
    std::vector<Instrument*> snapshot = sound->toInstruments();
    for (Instrument* i : snapshot) {
        if (Loop* loop = i->inLoop()) {
            std::vector<Instrument*> rest;
            for (Instrument* other : loop->instruments()) {
                if (other != i) rest.push_back(other);
            }
            loop->setInstruments(rest);
        }
        store_->deleteObject(i);
        save();
    }
}

void CoreDater::deleteAllInstrumentsOfLoop(Loop* loop) {
    std::vector<Instrument*> snapshot = loop->instruments();
    for (Instrument* i : snapshot) {
        store_->deleteObject(i);
        save();
    }
}

void CoreDater::deleteAllTrackLoopsOfLoop(Loop* loop) {
    std::vector<TrackLoop*> snapshot = loop->inTracks();
    for (TrackLoop* t : snapshot) {
        if (Track* track = t->inTrack()) {
            std::vector<TrackLoop*> rest;
            for (TrackLoop* other : track->trackloops()) {
                if (other != t) rest.push_back(other);
            }
            track->setTrackloops(rest);
        }
        deleteAllSquaresOfTrackLoop(t);
        store_->deleteObject(t);
        save();
    }
}

void CoreDater::deleteAllTrackLoopsOfTrack(Track* track) {
    std::vector<TrackLoop*> snapshot = track->trackloops();
    for (TrackLoop* t : snapshot) {
        deleteAllSquaresOfTrackLoop(t);
        store_->deleteObject(t);
        save();
    }
}

void CoreDater::deleteAllSquaresOfTrackLoop(TrackLoop* trackLoop) {
    std::vector<LoopSquares*> snapshot = trackLoop->squares();
    for (LoopSquares* b : snapshot) {
        store_->deleteObject(b);
        save();
    }
}

void CoreDater::deleteObject(ManagedObject* object) {
    if (store_) store_->deleteObject(object);
}
