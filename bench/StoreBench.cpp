// Opening a 10,000-item library, and one edit plus its save on it.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "library/CoreDater.h"
#include "library/store/LibraryStore.h"

namespace {

// 4,000 sounds, 4,000 loops of 4 instruments, 2,000 tracks of 3 rows: 10,000 items.
std::string makeLibrary() {
    static std::string path;
    if (!path.empty()) return path;
    std::string tmpl = (std::filesystem::temp_directory_path() / "quillo-bench-XXXXXX").string();
    std::string dir = mkdtemp(tmpl.data());
    path = dir + "/fladrix.sqlite";
    auto store = LibraryStore::open(path, nullptr);
    CoreDater& d = CoreDater::shIns();
    d.setManagedObjectContext(store.get());
    auto* sf = d.soundFolder("Sounds");
    auto* lf = d.loopFolder("Loops");
    auto* tf = d.trackFolder("Tracks");
    std::vector<Sound*> sounds;
    for (int i = 0; i < 4000; ++i) {
        auto* s = store->insert<Sound>();
        s->setName("Sound " + std::to_string(i));
        s->setArtist("Bench");
        s->setColor(static_cast<int16_t>(i % 144));
        s->setDate(i);
        s->setInFolder(sf);
        sounds.push_back(s);
    }
    std::vector<Loop*> loops;
    for (int i = 0; i < 4000; ++i) {
        auto* l = store->insert<Loop>();
        l->setName("Loop " + std::to_string(i));
        l->setBpm(90);
        l->setInFolder(lf);
        for (int k = 0; k < 4; ++k) {
            auto* inst = store->insert<Instrument>();
            inst->setSound(sounds[static_cast<size_t>((i * 4 + k) % 4000)]);
            inst->setTactsMask(static_cast<uint16_t>(0x8888 >> k));
            inst->setVolume(100);
            inst->setInLoop(l);
        }
        loops.push_back(l);
    }
    for (int i = 0; i < 2000; ++i) {
        auto* t = store->insert<Track>();
        t->setName("Track " + std::to_string(i));
        t->setSquaresnum(16);
        t->setInFolder(tf);
        for (int k = 0; k < 3; ++k) {
            auto* row = store->insert<TrackLoop>();
            row->setLoop(loops[static_cast<size_t>((i * 3 + k) % 4000)]);
            row->setVolume(100);
            auto* block = store->insert<LoopSquares>();
            block->setSquaresMask(0xF0F0);
            block->setOfTrackLoop(row);
            row->setInTrack(t);
        }
    }
    store->save();
    d.setManagedObjectContext(nullptr);
    return path;
}

void BM_OpenLibrary10kItems(benchmark::State& state) {
    std::string path = makeLibrary();
    for (auto _ : state) {
        auto store = LibraryStore::open(path, nullptr);
        benchmark::DoNotOptimize(store.get());
    }
}
BENCHMARK(BM_OpenLibrary10kItems)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_EditAndSave10kItems(benchmark::State& state) {
    auto store = LibraryStore::open(makeLibrary(), nullptr);
    auto instruments = store->all<Instrument>();
    size_t k = 0;
    for (auto _ : state) {
        Instrument* i = instruments[k++ % instruments.size()];
        i->setTactsMask(static_cast<uint16_t>(i->tactsMask() ^ 0x0100));
        store->save();
    }
}
BENCHMARK(BM_EditAndSave10kItems)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly(true);

// The floor: one bare SQLite WAL transaction updating one row.
void BM_BareSqliteTransaction(benchmark::State& state) {
    std::string path = makeLibrary();
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "UPDATE Instrument SET tacts=?1 WHERE id=?2", -1, &st, nullptr);
    int v = 0;
    for (auto _ : state) {
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_bind_int(st, 1, ++v & 0x7FFF);
        sqlite3_bind_int(st, 2, 9000);
        sqlite3_step(st);
        sqlite3_reset(st);
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
}
BENCHMARK(BM_BareSqliteTransaction)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
