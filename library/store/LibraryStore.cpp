#include "library/store/LibraryStore.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

#include "library/util/Log.h"

void detachFromInverses(ManagedObject* o);  // Model.cpp

namespace {

constexpr int kApplicationId = 0x51554C4C;  // identifies a Quillo library file

// One table per entity. Ordered to-many relationships live on the child row as
// the owner's id plus the child's position; unordered ones are the child's
// reference column read backwards.
const char* const kSchema = R"SQL(
CREATE TABLE Sound(id INTEGER PRIMARY KEY, name TEXT NOT NULL, artist TEXT NOT NULL,
  color INTEGER NOT NULL, date REAL NOT NULL, preloaded INTEGER NOT NULL, inFolder INTEGER, pos INTEGER NOT NULL);
CREATE TABLE SoundFolder(id INTEGER PRIMARY KEY, name TEXT NOT NULL, date REAL NOT NULL, opened INTEGER NOT NULL);
CREATE TABLE Instrument(id INTEGER PRIMARY KEY, tacts INTEGER NOT NULL, volume INTEGER NOT NULL,
  inLoop INTEGER, pos INTEGER NOT NULL, sound INTEGER);
CREATE TABLE Loop(id INTEGER PRIMARY KEY, name TEXT NOT NULL, artist TEXT NOT NULL, bpm INTEGER NOT NULL,
  date REAL NOT NULL, preloaded INTEGER NOT NULL, inFolder INTEGER, pos INTEGER NOT NULL);
CREATE TABLE LoopFolder(id INTEGER PRIMARY KEY, name TEXT NOT NULL, date REAL NOT NULL, opened INTEGER NOT NULL);
CREATE TABLE Track(id INTEGER PRIMARY KEY, name TEXT NOT NULL, artist TEXT NOT NULL, bpm INTEGER NOT NULL,
  squaresnum INTEGER NOT NULL, date REAL NOT NULL, preloaded INTEGER NOT NULL, inFolder INTEGER, pos INTEGER NOT NULL);
CREATE TABLE TrackFolder(id INTEGER PRIMARY KEY, name TEXT NOT NULL, date REAL NOT NULL, opened INTEGER NOT NULL);
CREATE TABLE TrackLoop(id INTEGER PRIMARY KEY, volume INTEGER NOT NULL, color INTEGER NOT NULL,
  inTrack INTEGER, pos INTEGER NOT NULL, loop INTEGER);
CREATE TABLE LoopSquares(id INTEGER PRIMARY KEY, squares INTEGER NOT NULL, ofTrackLoop INTEGER, pos INTEGER NOT NULL);
)SQL";

const char* const kWriteSql[kEntityCount] = {
    "INSERT OR REPLACE INTO Sound VALUES(?1,?2,?3,?4,?5,?6,?7,?8)",
    "INSERT OR REPLACE INTO SoundFolder VALUES(?1,?2,?3,?4)",
    "INSERT OR REPLACE INTO Instrument VALUES(?1,?2,?3,?4,?5,?6)",
    "INSERT OR REPLACE INTO Loop VALUES(?1,?2,?3,?4,?5,?6,?7,?8)",
    "INSERT OR REPLACE INTO LoopFolder VALUES(?1,?2,?3,?4)",
    "INSERT OR REPLACE INTO Track VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9)",
    "INSERT OR REPLACE INTO TrackFolder VALUES(?1,?2,?3,?4)",
    "INSERT OR REPLACE INTO TrackLoop VALUES(?1,?2,?3,?4,?5,?6)",
    "INSERT OR REPLACE INTO LoopSquares VALUES(?1,?2,?3,?4)",
};

void bindRef(sqlite3_stmt* s, int col, const ManagedObject* o) {
    if (o) sqlite3_bind_int64(s, col, o->objectID());
    else sqlite3_bind_null(s, col);
}

void bindText(sqlite3_stmt* s, int col, const std::string& t) {
    sqlite3_bind_text(s, col, t.data(), static_cast<int>(t.size()), SQLITE_TRANSIENT);
}

template <class F>
void bindFolder(sqlite3_stmt* s, const F* f) {
    bindText(s, 2, f->name());
    sqlite3_bind_double(s, 3, f->date());
    sqlite3_bind_int(s, 4, f->opened());
}

std::string columnText(sqlite3_stmt* s, int col) {
    const unsigned char* t = sqlite3_column_text(s, col);
    return t ? std::string(reinterpret_cast<const char*>(t), static_cast<size_t>(sqlite3_column_bytes(s, col)))
             : std::string();
}

}  // namespace

std::string StoreError::text() const { return description + ", {" + details + "}"; }

void LibraryStore::fail(StoreError* error, const std::string& what) const {
    if (!error) return;
    int code = db_ ? sqlite3_extended_errcode(db_) : SQLITE_CANTOPEN;
    const char* message = db_ ? sqlite3_errmsg(db_) : "cannot open";
    error->code = code;
    error->description = what + " (" + message + ")";
    error->details = "path = \"" + path_ + "\"; sqlite code = " + std::to_string(code) + "; sqlite message = \"" +
                     message + "\"";
}

namespace {

int tableCount(sqlite3* db) {
    sqlite3_stmt* q = nullptr;
    int tables = -1;
    if (sqlite3_prepare_v2(db, "SELECT count(*) FROM sqlite_master", -1, &q, nullptr) == SQLITE_OK &&
        sqlite3_step(q) == SQLITE_ROW) {
        tables = sqlite3_column_int(q, 0);
    }
    sqlite3_finalize(q);
    return tables;
}

// "file:" URI of a path, for opening a store on read-only media.
std::string fileUri(const std::string& path) {
    std::string uri = "file:";
    for (unsigned char c : path) {
        if (c == '%' || c == '?' || c == '#' || c < 0x21 || c >= 0x7f) {
            char hex[4];
            std::snprintf(hex, sizeof hex, "%%%02X", c);
            uri += hex;
        } else {
            uri += static_cast<char>(c);
        }
    }
    return uri;
}

}  // namespace

std::unique_ptr<LibraryStore> LibraryStore::open(const std::string& path, StoreError* error) {
    return open(path, false, error);
}

std::unique_ptr<LibraryStore> LibraryStore::openReadOnly(const std::string& path, StoreError* error) {
    return open(path, true, error);
}

std::unique_ptr<LibraryStore> LibraryStore::open(const std::string& path, bool readOnly, StoreError* error) {
    std::unique_ptr<LibraryStore> store(new LibraryStore());
    store->path_ = path;
    store->readOnly_ = readOnly;
    struct stat st {};
    bool exists = ::stat(path.c_str(), &st) == 0;
    if ((exists && !S_ISREG(st.st_mode)) || (!exists && readOnly)) {
        if (error) {
            error->code = SQLITE_CANTOPEN;
            error->description = exists ? "The library store is not a file" : "The library has no store yet";
            error->details = "path = \"" + path + "\"";
        }
        return nullptr;
    }
    int flags = (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX |
                (exists || readOnly ? 0 : SQLITE_OPEN_CREATE);
    if (sqlite3_open_v2(path.c_str(), &store->db_, flags, nullptr) != SQLITE_OK) {
        store->fail(error, "The library store could not be opened");
        return nullptr;
    }
    sqlite3_extended_result_codes(store->db_, 1);
    sqlite3_busy_timeout(store->db_, 2000);

    // Everything below only reads until the file has proven to be a store this
    // version understands, so a bad file is left exactly as it was.
    int tables = tableCount(store->db_);
    if (tables < 0 && readOnly) {
        // On read-only media SQLite cannot make the shared-memory file that
        // reading a WAL store needs; nobody can write there, so the file is
        // read as immutable.
        sqlite3_close_v2(store->db_);
        store->db_ = nullptr;
        const std::string uri = fileUri(path) + "?immutable=1";
        if (sqlite3_open_v2(uri.c_str(), &store->db_, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX,
                            nullptr) != SQLITE_OK) {
            store->fail(error, "The library store could not be opened");
            return nullptr;
        }
        sqlite3_extended_result_codes(store->db_, 1);
        tables = tableCount(store->db_);
    }
    if (tables == 0 && !readOnly) {
        // Two programs may open a new library at once: the schema is made in
        // a write transaction, after looking again inside it, so only the
        // first one makes it and the other one reads it.
        sqlite3_exec(store->db_, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
        if (sqlite3_exec(store->db_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
            store->fail(error, "The library store could not be created");
            return nullptr;
        }
        tables = tableCount(store->db_);
        if (tables == 0) {
            if (!store->createSchema(error)) return nullptr;
        } else {
            sqlite3_exec(store->db_, "COMMIT", nullptr, nullptr, nullptr);
        }
    }
    if (tables < 0) {
        int code = sqlite3_errcode(store->db_);
        store->fail(error, code == SQLITE_NOTADB    ? "The library store is not a database"
                           : code == SQLITE_CORRUPT ? "The library store is damaged"
                                                    : "The library store could not be read");
        return nullptr;
    }
    auto pragmaInt = [&](const char* sql) {
        sqlite3_stmt* p = nullptr;
        int v = -1;
        if (sqlite3_prepare_v2(store->db_, sql, -1, &p, nullptr) == SQLITE_OK && sqlite3_step(p) == SQLITE_ROW)
            v = sqlite3_column_int(p, 0);
        sqlite3_finalize(p);
        return v;
    };
    if (tables > 0) {
        int appId = pragmaInt("PRAGMA application_id");
        int version = pragmaInt("PRAGMA user_version");
        if (appId != kApplicationId || version < 1) {
            if (error) {
                error->code = -1;
                error->description = "The file is not a Quillo library store";
                error->details = "path = \"" + path + "\"; application id = " + std::to_string(appId);
            }
            return nullptr;
        }
        if (version > kSchemaVersion) {
            if (error) {
                error->code = -1;
                error->description = "The library store was written by a newer version of Quillo";
                error->details = "path = \"" + path + "\"; store version = " + std::to_string(version) +
                                 "; readable versions = 1 to " + std::to_string(kSchemaVersion);
            }
            return nullptr;
        }
        sqlite3_stmt* check = nullptr;
        std::string verdict;
        if (sqlite3_prepare_v2(store->db_, "PRAGMA quick_check", -1, &check, nullptr) == SQLITE_OK &&
            sqlite3_step(check) == SQLITE_ROW) {
            verdict = columnText(check, 0);
        }
        sqlite3_finalize(check);
        if (verdict != "ok") {
            store->fail(error, "The library store is damaged");
            if (error && !verdict.empty()) error->details += "; check = \"" + verdict + "\"";
            return nullptr;
        }
        if (!store->load(error)) return nullptr;
    }
    // WAL: a commit is one append to the log, and a killed process never leaves
    // a half-written store. NORMAL sync keeps every returned save across a crash
    // of the program; only a power cut can cost the last few.
    if (!readOnly)
        sqlite3_exec(store->db_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
    return store;
}

std::unique_ptr<LibraryStore> LibraryStore::openOrExit(const std::string& path) {
    StoreError error;
    auto store = open(path, &error);
    if (!store) {
        qlogFatal("Unresolved error %s, {%s}", error.description.c_str(), error.details.c_str());
        std::exit(70);
    }
    return store;
}

LibraryStore::~LibraryStore() {
    for (auto* s : writeStmts_) sqlite3_finalize(s);
    for (auto* s : deleteStmts_) sqlite3_finalize(s);
    if (db_) sqlite3_close_v2(db_);
}

bool LibraryStore::createSchema(StoreError* error) {
    // Runs inside the caller's write transaction.
    std::string sql = std::string(kSchema) +
                      "PRAGMA application_id=" + std::to_string(kApplicationId) +
                      "; PRAGMA user_version=" + std::to_string(kSchemaVersion) + "; COMMIT;";
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(error, "The library store could not be created");
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        return false;
    }
    return true;
}

ManagedObject* LibraryStore::insertNewObject(Entity entity) {
    std::unique_ptr<ManagedObject> o;
    switch (entity) {
    case Entity::Sound: o = std::make_unique<Sound>(); break;
    case Entity::SoundFolder: o = std::make_unique<SoundFolder>(); break;
    case Entity::Instrument: o = std::make_unique<Instrument>(); break;
    case Entity::Loop: o = std::make_unique<Loop>(); break;
    case Entity::LoopFolder: o = std::make_unique<LoopFolder>(); break;
    case Entity::Track: o = std::make_unique<Track>(); break;
    case Entity::TrackFolder: o = std::make_unique<TrackFolder>(); break;
    case Entity::TrackLoop: o = std::make_unique<TrackLoop>(); break;
    case Entity::LoopSquares: o = std::make_unique<LoopSquares>(); break;
    }
    ManagedObject* raw = o.get();
    raw->store_ = this;
    raw->id_ = nextId_++;
    owned_.push_back(std::move(o));
    byEntity_[static_cast<int>(entity)].push_back(raw);
    noteChanged(raw);
    return raw;
}

void LibraryStore::deleteObject(ManagedObject* o) {
    if (!o || o->deleted_ || o->store_ != this) return;
    detachFromInverses(o);
    o->deleted_ = true;
    auto& list = byEntity_[static_cast<int>(o->entity())];
    auto it = std::find(list.begin(), list.end(), o);
    if (it != list.end()) list.erase(it);
    if (o->persisted_) deleted_.push_back({o->entity(), o->id_});
    // The object itself stays allocated until the store goes away, so a stale
    // pointer held by a screen reads a deleted object rather than freed memory.
}

const std::vector<ManagedObject*>& LibraryStore::objects(Entity entity) const {
    return byEntity_[static_cast<int>(entity)];
}

void LibraryStore::noteChanged(ManagedObject* o) {
    if (o->dirty_) return;
    o->dirty_ = true;
    dirty_.push_back(o);
}

sqlite3_stmt* LibraryStore::writeStatement(Entity e) {
    auto& s = writeStmts_[static_cast<int>(e)];
    if (!s) sqlite3_prepare_v3(db_, kWriteSql[static_cast<int>(e)], -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr);
    return s;
}

sqlite3_stmt* LibraryStore::deleteStatement(Entity e) {
    auto& s = deleteStmts_[static_cast<int>(e)];
    if (!s) {
        std::string sql = std::string("DELETE FROM ") + entityName(e) + " WHERE id=?1";
        sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr);
    }
    return s;
}

bool LibraryStore::writeObject(ManagedObject* o) {
    sqlite3_stmt* s = writeStatement(o->entity());
    if (!s) return false;
    sqlite3_reset(s);
    sqlite3_bind_int64(s, 1, o->id_);
    switch (o->entity()) {
    case Entity::Sound: {
        auto* x = static_cast<Sound*>(o);
        bindText(s, 2, x->name_);
        bindText(s, 3, x->artist_);
        sqlite3_bind_int(s, 4, x->color_);
        sqlite3_bind_double(s, 5, x->date_);
        sqlite3_bind_int(s, 6, x->preloaded_);
        bindRef(s, 7, x->inFolder_);
        sqlite3_bind_int(s, 8, x->position_);
        break;
    }
    case Entity::SoundFolder: bindFolder(s, static_cast<SoundFolder*>(o)); break;
    case Entity::LoopFolder: bindFolder(s, static_cast<LoopFolder*>(o)); break;
    case Entity::TrackFolder: bindFolder(s, static_cast<TrackFolder*>(o)); break;
    case Entity::Instrument: {
        auto* x = static_cast<Instrument*>(o);
        sqlite3_bind_int(s, 2, x->tacts_);
        sqlite3_bind_int(s, 3, x->volume_);
        bindRef(s, 4, x->inLoop_);
        sqlite3_bind_int(s, 5, x->position_);
        bindRef(s, 6, x->sound_);
        break;
    }
    case Entity::Loop: {
        auto* x = static_cast<Loop*>(o);
        bindText(s, 2, x->name_);
        bindText(s, 3, x->artist_);
        sqlite3_bind_int(s, 4, x->bpm_);
        sqlite3_bind_double(s, 5, x->date_);
        sqlite3_bind_int(s, 6, x->preloaded_);
        bindRef(s, 7, x->inFolder_);
        sqlite3_bind_int(s, 8, x->position_);
        break;
    }
    case Entity::Track: {
        auto* x = static_cast<Track*>(o);
        bindText(s, 2, x->name_);
        bindText(s, 3, x->artist_);
        sqlite3_bind_int(s, 4, x->bpm_);
        sqlite3_bind_int(s, 5, x->squaresnum_);
        sqlite3_bind_double(s, 6, x->date_);
        sqlite3_bind_int(s, 7, x->preloaded_);
        bindRef(s, 8, x->inFolder_);
        sqlite3_bind_int(s, 9, x->position_);
        break;
    }
    case Entity::TrackLoop: {
        auto* x = static_cast<TrackLoop*>(o);
        sqlite3_bind_int(s, 2, x->volume_);
        sqlite3_bind_int(s, 3, x->color_);
        bindRef(s, 4, x->inTrack_);
        sqlite3_bind_int(s, 5, x->position_);
        bindRef(s, 6, x->loop_);
        break;
    }
    case Entity::LoopSquares: {
        auto* x = static_cast<LoopSquares*>(o);
        sqlite3_bind_int(s, 2, x->squares_);
        bindRef(s, 3, x->ofTrackLoop_);
        sqlite3_bind_int(s, 4, x->position_);
        break;
    }
    }
    int rc = sqlite3_step(s);
    sqlite3_reset(s);
    return rc == SQLITE_DONE;
}

bool LibraryStore::deleteRow(Entity e, int64_t id) {
    sqlite3_stmt* s = deleteStatement(e);
    if (!s) return false;
    sqlite3_reset(s);
    sqlite3_bind_int64(s, 1, id);
    int rc = sqlite3_step(s);
    sqlite3_reset(s);
    return rc == SQLITE_DONE;
}

bool LibraryStore::save(StoreError* error) {
    if (!hasChanges()) return true;
    if (readOnly_) {
        if (error) {
            error->code = SQLITE_READONLY;
            error->description = "The library was opened for reading only";
            error->details = "path = \"" + path_ + "\"";
        }
        return false;
    }
    if (sqlite3_exec(db_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(error, "The library could not be saved");
        return false;
    }
    bool ok = true;
    for (const DeletedRow& d : deleted_) {
        if (!(ok = deleteRow(d.entity, d.id))) break;
    }
    if (ok) {
        for (ManagedObject* o : dirty_) {
            if (o->deleted_) continue;
            if (!(ok = writeObject(o))) break;
        }
    }
    if (ok) ok = sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    if (!ok) {
        // Keep every pending change in memory: the next save writes it again.
        fail(error, "The library could not be saved");
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        return false;
    }
    for (ManagedObject* o : dirty_) {
        o->dirty_ = false;
        if (!o->deleted_) o->persisted_ = true;
    }
    dirty_.clear();
    deleted_.clear();
    return true;
}

void LibraryStore::limitPagesForTesting(int64_t pages) {
    std::string sql = "PRAGMA max_page_count=" + std::to_string(pages);
    sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
}

// Reads every row, then wires the relationships: ordered lists are rebuilt
// from each child's owner and position, unordered ones from the references.
bool LibraryStore::load(StoreError* error) {
    std::unordered_map<int64_t, ManagedObject*> byId;
    struct Ref {
        ManagedObject* child;
        int64_t owner;
        int32_t pos;
        int64_t other;
    };
    std::vector<Ref> refs[kEntityCount];

    auto readTable = [&](Entity e, const char* sql, auto&& fill) {
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(db_, sql, -1, &s, nullptr) != SQLITE_OK) return false;
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            int64_t id = sqlite3_column_int64(s, 0);
            std::unique_ptr<ManagedObject> holder;
            ManagedObject* o = nullptr;
            switch (e) {
            case Entity::Sound: holder = std::make_unique<Sound>(); break;
            case Entity::SoundFolder: holder = std::make_unique<SoundFolder>(); break;
            case Entity::Instrument: holder = std::make_unique<Instrument>(); break;
            case Entity::Loop: holder = std::make_unique<Loop>(); break;
            case Entity::LoopFolder: holder = std::make_unique<LoopFolder>(); break;
            case Entity::Track: holder = std::make_unique<Track>(); break;
            case Entity::TrackFolder: holder = std::make_unique<TrackFolder>(); break;
            case Entity::TrackLoop: holder = std::make_unique<TrackLoop>(); break;
            case Entity::LoopSquares: holder = std::make_unique<LoopSquares>(); break;
            }
            o = holder.get();
            o->store_ = this;
            o->id_ = id;
            o->persisted_ = true;
            nextId_ = std::max(nextId_, id + 1);
            fill(o, s, refs[static_cast<int>(e)]);
            byId.emplace(id, o);
            byEntity_[static_cast<int>(e)].push_back(o);
            owned_.push_back(std::move(holder));
        }
        sqlite3_finalize(s);
        return rc == SQLITE_DONE;
    };

    // The three folder kinds share one layout.
    auto folderFill = [](auto* f, sqlite3_stmt* s) {
        f->setName(columnText(s, 1));
        f->setDate(sqlite3_column_double(s, 2));
        f->setOpened(sqlite3_column_int(s, 3) != 0);
    };
    bool ok =
        readTable(Entity::SoundFolder, "SELECT * FROM SoundFolder ORDER BY id",
                  [&](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>&) { folderFill(static_cast<SoundFolder*>(o), s); }) &&
        readTable(Entity::LoopFolder, "SELECT * FROM LoopFolder ORDER BY id",
                  [&](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>&) { folderFill(static_cast<LoopFolder*>(o), s); }) &&
        readTable(Entity::TrackFolder, "SELECT * FROM TrackFolder ORDER BY id",
                  [&](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>&) { folderFill(static_cast<TrackFolder*>(o), s); }) &&
        readTable(Entity::Sound, "SELECT * FROM Sound ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      auto* x = static_cast<Sound*>(o);
                      x->name_ = columnText(s, 1);
                      x->artist_ = columnText(s, 2);
                      x->color_ = static_cast<int16_t>(sqlite3_column_int(s, 3));
                      x->date_ = sqlite3_column_double(s, 4);
                      x->preloaded_ = sqlite3_column_int(s, 5) != 0;
                      r.push_back({o, sqlite3_column_int64(s, 6), sqlite3_column_int(s, 7), 0});
                  }) &&
        readTable(Entity::Loop, "SELECT * FROM Loop ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      auto* x = static_cast<Loop*>(o);
                      x->name_ = columnText(s, 1);
                      x->artist_ = columnText(s, 2);
                      x->bpm_ = static_cast<int16_t>(sqlite3_column_int(s, 3));
                      x->date_ = sqlite3_column_double(s, 4);
                      x->preloaded_ = sqlite3_column_int(s, 5) != 0;
                      r.push_back({o, sqlite3_column_int64(s, 6), sqlite3_column_int(s, 7), 0});
                  }) &&
        readTable(Entity::Track, "SELECT * FROM Track ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      auto* x = static_cast<Track*>(o);
                      x->name_ = columnText(s, 1);
                      x->artist_ = columnText(s, 2);
                      x->bpm_ = static_cast<int16_t>(sqlite3_column_int(s, 3));
                      x->squaresnum_ = static_cast<int16_t>(sqlite3_column_int(s, 4));
                      x->date_ = sqlite3_column_double(s, 5);
                      x->preloaded_ = sqlite3_column_int(s, 6) != 0;
                      r.push_back({o, sqlite3_column_int64(s, 7), sqlite3_column_int(s, 8), 0});
                  }) &&
        readTable(Entity::Instrument, "SELECT * FROM Instrument ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      auto* x = static_cast<Instrument*>(o);
                      x->tacts_ = static_cast<int16_t>(sqlite3_column_int(s, 1));
                      x->volume_ = static_cast<int16_t>(sqlite3_column_int(s, 2));
                      r.push_back({o, sqlite3_column_int64(s, 3), sqlite3_column_int(s, 4), sqlite3_column_int64(s, 5)});
                  }) &&
        readTable(Entity::TrackLoop, "SELECT * FROM TrackLoop ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      auto* x = static_cast<TrackLoop*>(o);
                      x->volume_ = static_cast<int16_t>(sqlite3_column_int(s, 1));
                      x->color_ = static_cast<int16_t>(sqlite3_column_int(s, 2));
                      r.push_back({o, sqlite3_column_int64(s, 3), sqlite3_column_int(s, 4), sqlite3_column_int64(s, 5)});
                  }) &&
        readTable(Entity::LoopSquares, "SELECT * FROM LoopSquares ORDER BY id",
                  [](ManagedObject* o, sqlite3_stmt* s, std::vector<Ref>& r) {
                      static_cast<LoopSquares*>(o)->squares_ = static_cast<int16_t>(sqlite3_column_int(s, 1));
                      r.push_back({o, sqlite3_column_int64(s, 2), sqlite3_column_int(s, 3), 0});
                  });
    if (!ok) {
        fail(error, "The library store could not be read");
        return false;
    }

    auto find = [&](int64_t id, Entity want) -> ManagedObject* {
        if (id == 0) return nullptr;
        auto it = byId.find(id);
        return it != byId.end() && it->second->entity() == want ? it->second : nullptr;
    };
    // Children sorted by (owner, position) give every ordered list in order.
    auto wireOrdered = [&](Entity childKind, Entity ownerKind, auto&& append) {
        auto& list = refs[static_cast<int>(childKind)];
        // Rows were read in id order; the id settles equal positions the same way.
        std::sort(list.begin(), list.end(), [](const Ref& a, const Ref& b) {
            if (a.owner != b.owner) return a.owner < b.owner;
            if (a.pos != b.pos) return a.pos < b.pos;
            return a.child->objectID() < b.child->objectID();
        });
        for (const Ref& r : list) {
            ManagedObject* owner = find(r.owner, ownerKind);
            if (owner) append(owner, r.child);
        }
    };
    wireOrdered(Entity::Sound, Entity::SoundFolder, [](ManagedObject* f, ManagedObject* c) {
        auto* folder = static_cast<SoundFolder*>(f);
        auto* item = static_cast<Sound*>(c);
        item->inFolder_ = folder;
        item->position_ = static_cast<int32_t>(folder->items_.size());
        folder->items_.push_back(item);
    });
    wireOrdered(Entity::Loop, Entity::LoopFolder, [](ManagedObject* f, ManagedObject* c) {
        auto* folder = static_cast<LoopFolder*>(f);
        auto* item = static_cast<Loop*>(c);
        item->inFolder_ = folder;
        item->position_ = static_cast<int32_t>(folder->items_.size());
        folder->items_.push_back(item);
    });
    wireOrdered(Entity::Track, Entity::TrackFolder, [](ManagedObject* f, ManagedObject* c) {
        auto* folder = static_cast<TrackFolder*>(f);
        auto* item = static_cast<Track*>(c);
        item->inFolder_ = folder;
        item->position_ = static_cast<int32_t>(folder->items_.size());
        folder->items_.push_back(item);
    });
    wireOrdered(Entity::Instrument, Entity::Loop, [](ManagedObject* l, ManagedObject* c) {
        auto* loop = static_cast<Loop*>(l);
        auto* item = static_cast<Instrument*>(c);
        item->inLoop_ = loop;
        item->position_ = static_cast<int32_t>(loop->instruments_.size());
        loop->instruments_.push_back(item);
    });
    wireOrdered(Entity::TrackLoop, Entity::Track, [](ManagedObject* t, ManagedObject* c) {
        auto* track = static_cast<Track*>(t);
        auto* item = static_cast<TrackLoop*>(c);
        item->inTrack_ = track;
        item->position_ = static_cast<int32_t>(track->trackloops_.size());
        track->trackloops_.push_back(item);
    });
    wireOrdered(Entity::LoopSquares, Entity::TrackLoop, [](ManagedObject* t, ManagedObject* c) {
        auto* tl = static_cast<TrackLoop*>(t);
        auto* item = static_cast<LoopSquares*>(c);
        item->ofTrackLoop_ = tl;
        item->position_ = static_cast<int32_t>(tl->squares_.size());
        tl->squares_.push_back(item);
    });
    // Unordered references, read in id order so the sets come back stable.
    auto byChildId = [](const Ref& a, const Ref& b) { return a.child->objectID() < b.child->objectID(); };
    auto& inst = refs[static_cast<int>(Entity::Instrument)];
    std::sort(inst.begin(), inst.end(), byChildId);
    for (const Ref& r : inst) {
        if (auto* s = static_cast<Sound*>(find(r.other, Entity::Sound))) {
            auto* i = static_cast<Instrument*>(r.child);
            i->sound_ = s;
            s->toInstruments_.push_back(i);
        }
    }
    auto& tls = refs[static_cast<int>(Entity::TrackLoop)];
    std::sort(tls.begin(), tls.end(), byChildId);
    for (const Ref& r : tls) {
        if (auto* l = static_cast<Loop*>(find(r.other, Entity::Loop))) {
            auto* t = static_cast<TrackLoop*>(r.child);
            t->loop_ = l;
            l->inTracks_.push_back(t);
        }
    }
    // Loading is not a change: start with nothing to save.
    for (ManagedObject* o : dirty_) o->dirty_ = false;
    dirty_.clear();
    return true;
}
