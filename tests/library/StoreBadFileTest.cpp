// A file that is not a store this version can read is refused with a clear
// message, the process ends with a failure status, and the file is untouched.
#include <fstream>
#include <iterator>
#include <random>

#include <sqlite3.h>

#include "tests/library/TestStore.h"

namespace {

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeAll(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Opening must fail with a message naming the problem, and leave the bytes as they were.
void expectRefused(const std::string& path, const std::string& reason) {
    std::string bytes = readAll(path);
    StoreError error;
    EXPECT_EQ(LibraryStore::open(path, &error), nullptr);
    EXPECT_NE(error.description.find(reason), std::string::npos) << error.text();
    EXPECT_NE(error.details.find(path), std::string::npos);
    EXPECT_EQ(readAll(path), bytes);
    EXPECT_EXIT(LibraryStore::openOrExit(path), ::testing::ExitedWithCode(70), "Unresolved error .*" + reason);
    EXPECT_EQ(readAll(path), bytes);
}

std::string savedStore(const TempDir& dir, int sounds) {
    std::string path = dir.file("saved.sqlite");
    auto s = LibraryStore::open(path, nullptr);
    for (int i = 0; i < sounds; ++i) {
        auto* snd = s->insert<Sound>();
        snd->setName("Sound " + std::to_string(i) + std::string(200, 'x'));
    }
    EXPECT_TRUE(s->save());
    s.reset();  // closing checkpoints the log into the main file
    return path;
}

}  // namespace

TEST(StoreBadFile, RandomBytesAreNotAStore) {
    TempDir dir;
    std::mt19937 rng(7);
    std::string bytes(8192, '\0');
    for (char& c : bytes) c = static_cast<char>(rng());
    writeAll(dir.file("fladrix.sqlite"), bytes);
    expectRefused(dir.file("fladrix.sqlite"), "not a database");
}

TEST(StoreBadFile, TruncatedStoreIsDamaged) {
    TempDir dir;
    std::string path = savedStore(dir, 300);
    std::string bytes = readAll(path);
    ASSERT_GT(bytes.size(), 16384u);
    writeAll(path, bytes.substr(0, bytes.size() / 2));
    expectRefused(path, "damaged");
}

TEST(StoreBadFile, LaterSchemaVersionIsRefused) {
    TempDir dir;
    std::string path = savedStore(dir, 1);
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    sqlite3_exec(db, "PRAGMA user_version=2", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    expectRefused(path, "newer version");
}

TEST(StoreBadFile, ForeignDatabaseIsNotAStore) {
    TempDir dir;
    std::string path = dir.file("other.sqlite");
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    sqlite3_exec(db, "CREATE TABLE notes(x); INSERT INTO notes VALUES(1);", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    expectRefused(path, "not a Quillo library store");
}

TEST(StoreBadFile, MissingAndEmptyFilesBecomeNewStores) {
    TempDir dir;
    EXPECT_NE(LibraryStore::open(dir.file("new.sqlite"), nullptr), nullptr);
    writeAll(dir.file("empty.sqlite"), "");
    auto s = LibraryStore::open(dir.file("empty.sqlite"), nullptr);
    ASSERT_NE(s, nullptr);
    s->insert<Sound>()->setName("x");
    EXPECT_TRUE(s->save());
}
