#pragma once
// The persistent object context of a library folder's "fladrix.sqlite".
//
// Opening reads the whole graph into memory. The program then edits objects
// directly and calls save(), which writes every insert, update and delete made
// since the last successful save in one SQLite transaction (WAL journal). A
// save that fails leaves the changes pending, so the next save retries them.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "library/model/Model.h"

struct sqlite3;
struct sqlite3_stmt;

struct StoreError {
    int code = 0;             // SQLite result code, or -1 for a schema problem
    std::string description;  // one line a person can read
    std::string details;      // "key = value" pairs: path, sqlite message, versions
    std::string text() const; // "DESCRIPTION, {DETAILS}" as logged
};

class LibraryStore {
public:
    static constexpr int kSchemaVersion = 1;
    static constexpr const char* kFileName = "fladrix.sqlite";

    // Opens (creating when missing) the store file. On failure returns null and
    // fills *error; the file on disk is left as it was.
    static std::unique_ptr<LibraryStore> open(const std::string& path, StoreError* error);
    // Opens an existing store for reading only (also on read-only media);
    // save() then fails. Never creates or changes the file.
    static std::unique_ptr<LibraryStore> openReadOnly(const std::string& path, StoreError* error);
    // As open(), but a store that cannot be opened is fatal: logs
    // "Unresolved error %@, %@" and ends the process with a non-zero status.
    static std::unique_ptr<LibraryStore> openOrExit(const std::string& path);

    ~LibraryStore();
    LibraryStore(const LibraryStore&) = delete;
    LibraryStore& operator=(const LibraryStore&) = delete;

    ManagedObject* insertNewObject(Entity entity);
    template <class T>
    T* insert() {
        return static_cast<T*>(insertNewObject(T::kEntity));
    }
    void deleteObject(ManagedObject* object);

    // Live objects of an entity, in the order they were created or loaded.
    const std::vector<ManagedObject*>& objects(Entity entity) const;
    template <class T>
    std::vector<T*> all() const {
        std::vector<T*> out;
        out.reserve(objects(T::kEntity).size());
        for (ManagedObject* o : objects(T::kEntity)) out.push_back(static_cast<T*>(o));
        return out;
    }

    bool save(StoreError* error = nullptr);
    bool readOnly() const { return readOnly_; }
    bool hasChanges() const { return !dirty_.empty() || !deleted_.empty(); }
    const std::string& path() const { return path_; }

    // Caps the database size in pages, so tests can meet a full disk for real.
    void limitPagesForTesting(int64_t pages);

private:
    friend class ManagedObject;
    LibraryStore() = default;
    static std::unique_ptr<LibraryStore> open(const std::string& path, bool readOnly, StoreError* error);
    void noteChanged(ManagedObject* o);
    bool load(StoreError* error);
    bool createSchema(StoreError* error);
    bool writeObject(ManagedObject* o);
    bool deleteRow(Entity e, int64_t id);
    sqlite3_stmt* writeStatement(Entity e);
    sqlite3_stmt* deleteStatement(Entity e);
    void fail(StoreError* error, const std::string& what) const;

    std::string path_;
    sqlite3* db_ = nullptr;
    bool readOnly_ = false;
    int64_t nextId_ = 1;
    std::vector<std::unique_ptr<ManagedObject>> owned_;
    std::vector<ManagedObject*> byEntity_[kEntityCount];
    std::vector<ManagedObject*> dirty_;
    struct DeletedRow {
        Entity entity;
        int64_t id;
    };
    std::vector<DeletedRow> deleted_;
    sqlite3_stmt* writeStmts_[kEntityCount] = {};
    sqlite3_stmt* deleteStmts_[kEntityCount] = {};
};
