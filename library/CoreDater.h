#pragma once
// The one gateway that creates, finds, copies and deletes library objects and
// saves the store. Screens change plain attributes directly and call save();
// every structural change goes through here. Main thread only.
#include <functional>
#include <string>
#include <vector>

#include "library/model/Model.h"

class LibraryStore;

class CoreDater {
public:
    static CoreDater& shIns();

    // The context the shared instance works on; the application sets it once
    // it has opened the library (tests point it at their own stores).
    void setManagedObjectContext(LibraryStore* store) { store_ = store; }
    LibraryStore* managedObjectContext() const { return store_; }
    // Where userArtistsName() comes from (the application's setting).
    void setUserArtistNameSource(std::function<std::string()> source) { artistSource_ = std::move(source); }

    // Saves every change; false (after logging why) when the store refused.
    // Inside a batch, only the outermost endBatch writes.
    bool save();
    // Several operations as one transaction: nothing reaches the file until
    // endBatch, which saves everything at once (or nothing, if killed first).
    void beginBatch() { ++batchDepth_; }
    bool endBatch(std::string* reason = nullptr);
    // Why the last save failed (empty after a successful one).
    const std::string& lastSaveError() const { return lastSaveError_; }

    // Lookup.
    std::vector<ManagedObject*> getAllItemsOfEntity(const std::string& entity);  // newest first
    ManagedObject* findEntity(const std::string& entity, const std::string& name);
    Sound* findSoundWithName(const std::string& name);
    std::string userArtistsName();
    std::string getNameForNewRecordedSound();
    std::string getNameForNewUsers(const std::string& entity);

    // Folders, found by name or created (opened, dated now, saved).
    SoundFolder* soundFolder(const std::string& name);  // empty name: none
    LoopFolder* loopFolder(const std::string& name);    // empty name: none
    TrackFolder* trackFolder(const std::string& name);  // empty name: "My tracks"

    // Sounds.
    Sound* createPreloadedSound(const std::string& name, int16_t color, const std::string& folder,
                                const std::string& artist);
    Sound* createRecordedSound(const std::string& name, int16_t color, const std::string& folder);
    Sound* createPreloaded(bool preloaded, const std::string& name, int16_t color, const std::string& folder,
                           const std::string& artist);

    // Instruments and loops.
    Instrument* createInstrumentWithSound(const std::string& soundName, uint16_t tacts);
    Instrument* createInstrumentWithSound(const std::string& soundName, uint16_t tacts, int16_t volum);
    Loop* createPreloadedLoop(const std::string& name, int16_t bpm, const std::vector<Instrument*>& instruments,
                              const std::string& folder, const std::string& artist);
    Loop* createPreloaded(bool preloaded, const std::string& name, int16_t bpm,
                          const std::vector<Instrument*>& instruments, const std::string& folder,
                          const std::string& artist);
    Loop* createEmptyUsersLoop();
    Loop* createUsersLoopThatCopyOfPreloadedLoop(Loop* loop);
    Loop* createUsersLoopThatCopyOfPreloadedLoop(Loop* loop, const std::string& folder);

    // Track loops and tracks.
    TrackLoop* createTrackLoopWithLoop(Loop* loop, const std::vector<LoopSquares*>& squares, int16_t volum,
                                       int16_t color);
    LoopSquares* loopSqrsWithSquares(uint16_t squares);  // unowned, not saved by itself
    Track* createPreloadedTrack(const std::string& name, int16_t bpm, int16_t squaresnum,
                                const std::vector<TrackLoop*>& trackLoops, const std::string& artist);
    Track* createPreloaded(bool preloaded, const std::string& name, int16_t bpm, int16_t squaresnum,
                           const std::vector<TrackLoop*>& trackLoops, const std::string& folder,
                           const std::string& artist);
    Track* createEmptyUsersTrack();
    Track* createUsersTrackThatCopyOfPreloadedTrack(Track* track);

    // Dates: move an edited item to the top of its list.
    static void updateDateOfSound(Sound* sound);
    static void updateDateOfLoop(Loop* loop);
    static void updateDateOfTrack(Track* track);

    // Dependents. None deletes the sound, loop or track itself.
    void deleteAllInstrumentsOfSound(Sound* sound);
    void deleteAllInstrumentsOfLoop(Loop* loop);
    void deleteAllTrackLoopsOfLoop(Loop* loop);
    void deleteAllTrackLoopsOfTrack(Track* track);
    void deleteAllSquaresOfTrackLoop(TrackLoop* trackLoop);
    // Deletes one object (the list screens delete an item after its dependents).
    void deleteObject(ManagedObject* object);

private:
    CoreDater() = default;
    CoreDater(const CoreDater&) = delete;
    CoreDater& operator=(const CoreDater&) = delete;
    template <class F>
    F* folderNamed(const std::string& name);

    LibraryStore* store_ = nullptr;
    std::function<std::string()> artistSource_;
    int batchDepth_ = 0;
    std::string lastSaveError_;
};
