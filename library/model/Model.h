#pragma once
// The library's object graph: sounds, loops made of instruments, tracks made of
// track loops, and a folder kind for each of the three item kinds.
//
// Objects are created and owned by a LibraryStore. Setting either side of a
// relationship updates the other side; every change marks the object so that
// the next LibraryStore::save writes it. Numeric attributes are 16-bit signed,
// as stored; the two masks (Instrument::tacts, LoopSquares::squares) are also
// readable and writable as the same sixteen bits unsigned.
#include <cstdint>
#include <string>
#include <vector>

class LibraryStore;
struct Relations;

enum class Entity : uint8_t {
    Sound, SoundFolder, Instrument, Loop, LoopFolder, Track, TrackFolder, TrackLoop, LoopSquares
};
constexpr int kEntityCount = 9;
const char* entityName(Entity e);
bool entityFromName(const std::string& name, Entity* out);

class ManagedObject {
public:
    ManagedObject(const ManagedObject&) = delete;
    ManagedObject& operator=(const ManagedObject&) = delete;
    virtual ~ManagedObject() = default;

    virtual Entity entity() const = 0;
    int64_t objectID() const { return id_; }
    bool isDeleted() const { return deleted_; }
    LibraryStore* store() const { return store_; }

protected:
    ManagedObject() = default;
    void changed();

private:
    friend class LibraryStore;
    friend struct Relations;
    LibraryStore* store_ = nullptr;
    int64_t id_ = 0;
    bool deleted_ = false;
    bool dirty_ = false;
    bool persisted_ = false;  // a row exists in the database
    int32_t position_ = 0;    // index within the ordered relationship that owns it
};

class Sound;
class Loop;
class Track;
class Instrument;
class TrackLoop;
class LoopSquares;

// The three folder kinds share one shape: a name, a date, an opened flag and
// an ordered list of items whose inverse is the item's inFolder.
template <class Item, Entity Kind>
class Folder : public ManagedObject {
public:
    using ItemType = Item;
    static constexpr Entity kEntity = Kind;
    Entity entity() const override { return Kind; }
    const std::string& name() const { return name_; }
    void setName(const std::string& v) { name_ = v; changed(); }
    double date() const { return date_; }
    void setDate(double v) { date_ = v; changed(); }
    bool opened() const { return opened_; }
    void setOpened(bool v) { opened_ = v; changed(); }
    const std::vector<Item*>& items() const { return items_; }
    void setItems(const std::vector<Item*>& items);

private:
    friend struct Relations;
    friend class LibraryStore;
    std::string name_;
    double date_ = 0;
    bool opened_ = false;
    std::vector<Item*> items_;
};

class SoundFolder final : public Folder<Sound, Entity::SoundFolder> {};
class LoopFolder final : public Folder<Loop, Entity::LoopFolder> {};
class TrackFolder final : public Folder<Track, Entity::TrackFolder> {};

class Sound final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::Sound;
    Entity entity() const override { return kEntity; }
    const std::string& name() const { return name_; }
    void setName(const std::string& v) { name_ = v; changed(); }
    const std::string& artist() const { return artist_; }
    void setArtist(const std::string& v) { artist_ = v; changed(); }
    int16_t color() const { return color_; }
    void setColor(int16_t v) { color_ = v; changed(); }
    double date() const { return date_; }
    void setDate(double v) { date_ = v; changed(); }
    bool preloaded() const { return preloaded_; }
    void setPreloaded(bool v) { preloaded_ = v; changed(); }
    SoundFolder* inFolder() const { return inFolder_; }
    void setInFolder(SoundFolder* f);
    // Unordered: every instrument, in any loop, that plays this sound.
    const std::vector<Instrument*>& toInstruments() const { return toInstruments_; }

private:
    friend struct Relations;
    friend class LibraryStore;
    std::string name_, artist_;
    int16_t color_ = 0;
    double date_ = 0;
    bool preloaded_ = false;
    SoundFolder* inFolder_ = nullptr;
    std::vector<Instrument*> toInstruments_;
};

class Instrument final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::Instrument;
    Entity entity() const override { return kEntity; }
    int16_t tacts() const { return tacts_; }
    void setTacts(int16_t v) { tacts_ = v; changed(); }
    uint16_t tactsMask() const { return static_cast<uint16_t>(tacts_); }
    void setTactsMask(uint16_t v) { setTacts(static_cast<int16_t>(v)); }
    int16_t volume() const { return volume_; }
    void setVolume(int16_t v) { volume_ = v; changed(); }
    Loop* inLoop() const { return inLoop_; }
    void setInLoop(Loop* l);
    Sound* sound() const { return sound_; }
    void setSound(Sound* s);

private:
    friend struct Relations;
    friend class LibraryStore;
    int16_t tacts_ = 0;
    int16_t volume_ = 0;
    Loop* inLoop_ = nullptr;
    Sound* sound_ = nullptr;
};

class Loop final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::Loop;
    Entity entity() const override { return kEntity; }
    const std::string& name() const { return name_; }
    void setName(const std::string& v) { name_ = v; changed(); }
    const std::string& artist() const { return artist_; }
    void setArtist(const std::string& v) { artist_ = v; changed(); }
    int16_t bpm() const { return bpm_; }
    void setBpm(int16_t v) { bpm_ = v; changed(); }
    double date() const { return date_; }
    void setDate(double v) { date_ = v; changed(); }
    bool preloaded() const { return preloaded_; }
    void setPreloaded(bool v) { preloaded_ = v; changed(); }
    LoopFolder* inFolder() const { return inFolder_; }
    void setInFolder(LoopFolder* f);
    const std::vector<Instrument*>& instruments() const { return instruments_; }
    void setInstruments(const std::vector<Instrument*>& v);
    // Unordered: every track loop, in any track, that plays this loop.
    const std::vector<TrackLoop*>& inTracks() const { return inTracks_; }

private:
    friend struct Relations;
    friend class LibraryStore;
    std::string name_, artist_;
    int16_t bpm_ = 0;
    double date_ = 0;
    bool preloaded_ = false;
    LoopFolder* inFolder_ = nullptr;
    std::vector<Instrument*> instruments_;
    std::vector<TrackLoop*> inTracks_;
};

class Track final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::Track;
    Entity entity() const override { return kEntity; }
    const std::string& name() const { return name_; }
    void setName(const std::string& v) { name_ = v; changed(); }
    const std::string& artist() const { return artist_; }
    void setArtist(const std::string& v) { artist_ = v; changed(); }
    int16_t bpm() const { return bpm_; }
    void setBpm(int16_t v) { bpm_ = v; changed(); }
    int16_t squaresnum() const { return squaresnum_; }
    void setSquaresnum(int16_t v) { squaresnum_ = v; changed(); }
    double date() const { return date_; }
    void setDate(double v) { date_ = v; changed(); }
    bool preloaded() const { return preloaded_; }
    void setPreloaded(bool v) { preloaded_ = v; changed(); }
    TrackFolder* inFolder() const { return inFolder_; }
    void setInFolder(TrackFolder* f);
    const std::vector<TrackLoop*>& trackloops() const { return trackloops_; }
    void setTrackloops(const std::vector<TrackLoop*>& v);

private:
    friend struct Relations;
    friend class LibraryStore;
    std::string name_, artist_;
    int16_t bpm_ = 0;
    int16_t squaresnum_ = 0;
    double date_ = 0;
    bool preloaded_ = false;
    TrackFolder* inFolder_ = nullptr;
    std::vector<TrackLoop*> trackloops_;
};

class TrackLoop final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::TrackLoop;
    Entity entity() const override { return kEntity; }
    int16_t volume() const { return volume_; }
    void setVolume(int16_t v) { volume_ = v; changed(); }
    int16_t color() const { return color_; }
    void setColor(int16_t v) { color_ = v; changed(); }
    Track* inTrack() const { return inTrack_; }
    void setInTrack(Track* t);
    Loop* loop() const { return loop_; }
    void setLoop(Loop* l);
    const std::vector<LoopSquares*>& squares() const { return squares_; }
    void setSquares(const std::vector<LoopSquares*>& v);

private:
    friend struct Relations;
    friend class LibraryStore;
    int16_t volume_ = 0;
    int16_t color_ = 0;
    Track* inTrack_ = nullptr;
    Loop* loop_ = nullptr;
    std::vector<LoopSquares*> squares_;
};

class LoopSquares final : public ManagedObject {
public:
    static constexpr Entity kEntity = Entity::LoopSquares;
    Entity entity() const override { return kEntity; }
    int16_t squares() const { return squares_; }
    void setSquares(int16_t v) { squares_ = v; changed(); }
    uint16_t squaresMask() const { return static_cast<uint16_t>(squares_); }
    void setSquaresMask(uint16_t v) { setSquares(static_cast<int16_t>(v)); }
    TrackLoop* ofTrackLoop() const { return ofTrackLoop_; }
    void setOfTrackLoop(TrackLoop* t);

private:
    friend struct Relations;
    friend class LibraryStore;
    int16_t squares_ = 0;
    TrackLoop* ofTrackLoop_ = nullptr;
};
