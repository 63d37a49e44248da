#pragma once
// A real store in a fresh temporary folder, with CoreDater pointed at it.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "library/CoreDater.h"
#include "library/store/LibraryStore.h"
#include "tests/library/LogCapture.h"

class TempDir {
public:
    TempDir() {
        std::string tmpl = (std::filesystem::temp_directory_path() / "quillo-test-XXXXXX").string();
        path_ = mkdtemp(tmpl.data());
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// SQLite's own verdict on a store file ("ok" when sound). Opens it for
// writing, so that a journal left by a killed writer is recovered first.
inline std::string integrity(const std::string& path) {
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_stmt* st = nullptr;
    std::string verdict = "no answer";
    if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &st, nullptr) == SQLITE_OK &&
        sqlite3_step(st) == SQLITE_ROW)
        verdict = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
    sqlite3_finalize(st);
    sqlite3_close(db);
    return verdict;
}

class StoreTest : public ::testing::Test {
protected:
    void SetUp() override { reopen(); }
    void TearDown() override { CoreDater::shIns().setManagedObjectContext(nullptr); }
    // Drops the in-memory store and reads the file again from scratch.
    void reopen() {
        CoreDater::shIns().setManagedObjectContext(nullptr);
        store.reset();
        StoreError error;
        store = LibraryStore::open(dir.file(LibraryStore::kFileName), &error);
        ASSERT_TRUE(store) << error.text();
        CoreDater::shIns().setManagedObjectContext(store.get());
        CoreDater::shIns().setUserArtistNameSource([] { return std::string("Tester"); });
    }
    CoreDater& dater() { return CoreDater::shIns(); }

    TempDir dir;
    std::unique_ptr<LibraryStore> store;
};
