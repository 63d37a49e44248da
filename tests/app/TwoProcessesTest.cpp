// Several quillo-cli processes on one library, processes killed at random
// moments, read-only and full disks: what was reported done stays done, and
// everything else leaves the library as it was.
#include <QString>
#include <random>
#include <set>

#include "library/store/LibraryLock.h"
#include "tests/app/AppTestSupport.h"

namespace fs = std::filesystem;
using namespace apptest;

namespace {

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) out.push_back(l);
    return out;
}

int64_t countRows(const std::string& store, const char* sql) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(store.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_stmt* st = nullptr;
    int64_t n = -1;
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) == SQLITE_OK && sqlite3_step(st) == SQLITE_ROW)
        n = sqlite3_column_int64(st, 0);
    sqlite3_finalize(st);
    sqlite3_close(db);
    return n;
}

class TwoProcessesTest : public ::testing::Test {
protected:
    std::map<std::string, std::string> env(const std::string& lockWait = "20") const {
        return {{"XDG_STATE_HOME", state.path()}, {"QUILLO_LOCK_WAIT", lockWait}, {"QUILLO_AUDIO", "null"}};
    }
    std::vector<std::string> cli(const std::string& folder, std::vector<std::string> args) const {
        args.insert(args.begin(), {"--library", folder});
        return args;
    }
    std::string store(const std::string& folder) const { return folder + "/fladrix.sqlite"; }

    TempDir dir, state;
    std::mt19937 rng{20261123};
};

}  // namespace

TEST_F(TwoProcessesTest, OneWriterAtATimeAndReadersAlongside) {
    const std::string lib = dir.file("lib");
    ASSERT_EQ(runCli(cli(lib, {"list", "sounds"}), env()).status, 0);

    // While this process holds the library, a writer waits, then stops with
    // a message naming us; a reader works.
    {
        LibraryLock::Failure failure;
        std::string reason;
        auto lock = LibraryLock::acquire(lib, std::chrono::milliseconds(0), &failure, &reason, nullptr);
        ASSERT_TRUE(lock) << reason;
        writeSound(dir.file("Held.wav"), 1000);
        CliResult blocked = runCli(cli(lib, {"import", dir.file("Held.wav")}), env("0.3"));
        EXPECT_EQ(blocked.status, 75);
        EXPECT_NE(blocked.err.find("(process " + std::to_string(::getpid()) + ")"), std::string::npos) << blocked.err;
        EXPECT_TRUE(fs::exists(dir.file("Held.wav")));
        CliResult reader = runCli(cli(lib, {"list", "loops"}), env());
        EXPECT_EQ(reader.status, 0) << reader.err;
        EXPECT_EQ(lines(reader.out).size(), 18u);
    }

    // Two imports of the same name at once, round after round: both land,
    // under distinct names, each with its own audio.
    std::set<std::string> names;
    for (int round = 0; round < 6; ++round) {
        fs::create_directories(dir.file("a")), fs::create_directories(dir.file("b"));
        writeSound(dir.file("a/Beat.wav"), 1000 + round);
        writeSound(dir.file("b/Beat.wav"), 3000 + round);
        CliProcess first(cli(lib, {"import", dir.file("a/Beat.wav")}), env());
        CliProcess second(cli(lib, {"import", dir.file("b/Beat.wav")}), env());
        CliResult r1 = first.wait(), r2 = second.wait();
        ASSERT_EQ(r1.status, 0) << r1.err;
        ASSERT_EQ(r2.status, 0) << r2.err;
        const std::string n1 = r1.out.substr(0, r1.out.find('\t')), n2 = r2.out.substr(0, r2.out.find('\t'));
        EXPECT_NE(n1, n2);
        EXPECT_EQ(readSound(lib + "/" + n1 + ".wav").frames(), 1000 + round) << n1;
        EXPECT_EQ(readSound(lib + "/" + n2 + ".wav").frames(), 3000 + round) << n2;
        names.insert(n1), names.insert(n2);
    }
    CliResult list = runCli(cli(lib, {"list", "sounds"}), env());
    for (const std::string& n : names) EXPECT_NE(list.out.find("Imported\t" + n + "\t"), std::string::npos) << n;
    EXPECT_EQ(lines(list.out).size(), 88u + 12u);
}

TEST_F(TwoProcessesTest, ANewLibraryOpenedByManyAtOnceIsMadeOnce) {
    // Readers and renderers start together on a library that does not exist yet.
    const std::string lib = dir.file("fresh");
    std::vector<std::unique_ptr<CliProcess>> lists, renders;
    for (int i = 0; i < 3; ++i) {
        lists.push_back(std::make_unique<CliProcess>(cli(lib, {"list", "loops"}), env()));
        renders.push_back(std::make_unique<CliProcess>(
            cli(lib, {"render", "track", "Weird 140", "-o", dir.file("w" + std::to_string(i) + ".wav")}), env()));
    }
    for (auto& p : lists) {
        CliResult r = p->wait();
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(lines(r.out).size(), 18u);
    }
    for (auto& p : renders) {
        CliResult r = p->wait();
        EXPECT_EQ(r.status, 0) << r.err;
    }
    EXPECT_EQ(countRows(store(lib), "SELECT count(*) FROM Sound"), 88);
    EXPECT_EQ(countRows(store(lib), "SELECT count(*) FROM Loop"), 18);
}

TEST_F(TwoProcessesTest, AReadOnlyLibraryIsListedAndRenderedButNotChanged) {
    const std::string lib = dir.file("lib");
    writeSound(dir.file("Mine.wav"), 1000);
    ASSERT_EQ(runCli(cli(lib, {"import", dir.file("Mine.wav")}), env()).status, 0);
    TestMount readOnly = TestMount::readOnly(lib);
    if (!readOnly.ok()) GTEST_SKIP() << "cannot make a read-only bind mount here (needs root): " << std::strerror(errno);

    CliResult list = runCli(cli(lib, {"list", "sounds"}), env());
    EXPECT_EQ(list.status, 0) << list.err;
    EXPECT_NE(list.out.find("\tMine\t"), std::string::npos);
    CliResult render = runCli(cli(lib, {"render", "loop", "Easy beat 95", "-o", dir.file("easy.wav")}), env());
    EXPECT_EQ(render.status, 0) << render.err;
    EXPECT_GT(readSound(dir.file("easy.wav")).frames(), 44100);
    writeSound(dir.file("Other.wav"), 1000);
    CliResult import = runCli(cli(lib, {"import", dir.file("Other.wav")}), env());
    EXPECT_EQ(import.status, 73);
    EXPECT_NE(import.err.find("Read-only file system"), std::string::npos) << import.err;
    EXPECT_TRUE(fs::exists(dir.file("Other.wav")));
}

TEST_F(TwoProcessesTest, KilledFirstLaunchesLeaveAllOrNothingOfTheBuiltInContent) {
    // A first launch takes about 50 ms here: kill anywhere in it, or after it.
    std::uniform_int_distribution<int> delayUs(0, 80000);
    int partial = 0;
    for (int round = 0; round < 16; ++round) {
        const std::string lib = dir.file("k" + std::to_string(round));
        CliProcess run(cli(lib, {"list", "sounds"}), env());
        std::this_thread::sleep_for(std::chrono::microseconds(delayUs(rng)));
        run.kill(SIGKILL);
        run.wait();
        if (!fs::exists(store(lib))) continue;
        ASSERT_EQ(integrity(store(lib)), "ok") << round;
        // -1: killed before even the tables were made.
        const int64_t sounds = std::max<int64_t>(0, countRows(store(lib), "SELECT count(*) FROM Sound"));
        const int64_t loops = std::max<int64_t>(0, countRows(store(lib), "SELECT count(*) FROM Loop"));
        const int64_t tracks = std::max<int64_t>(0, countRows(store(lib), "SELECT count(*) FROM Track"));
        if (sounds == 0) {
            ++partial;
            EXPECT_EQ(loops + tracks, 0) << round;
        } else {
            EXPECT_EQ(sounds, 88) << round;
            EXPECT_EQ(loops, 18) << round;
            EXPECT_EQ(tracks, 2) << round;
        }
        // The next launch finds it complete, or makes all of it.
        CliResult again = runCli(cli(lib, {"list", "loops"}), env());
        EXPECT_EQ(lines(again.out).size(), 18u) << again.err;
    }
    std::printf("rounds killed before the built-in content was saved: %d of 16\n", partial);
}

TEST_F(TwoProcessesTest, KilledImportsLoseNothing) {
    const std::string lib = dir.file("lib");
    ASSERT_EQ(runCli(cli(lib, {"list", "sounds"}), env()).status, 0);
    // An import takes about 140 ms here: kill anywhere in it, or after it.
    std::uniform_int_distribution<int> delayUs(0, 200000);
    std::map<std::string, int> reported;  // name -> frames
    std::vector<std::pair<std::string, int>> killed;  // source -> frames
    for (int round = 0; round < 20; ++round) {
        const std::string source = dir.file("take " + std::to_string(round) + ".wav");
        const int frames = 20000 + round;
        writeSound(source, frames);
        CliProcess run(cli(lib, {"import", source}), env());
        std::this_thread::sleep_for(std::chrono::microseconds(delayUs(rng)));
        run.kill(SIGKILL);
        CliResult r = run.wait();
        if (r.status == 0) reported[r.out.substr(0, r.out.find('\t'))] = frames;
        else killed.push_back({source, frames});
        ASSERT_EQ(integrity(store(lib)), "ok") << round;
    }
    CliResult list = runCli(cli(lib, {"list", "sounds"}), env());
    ASSERT_EQ(list.status, 0) << list.err;
    for (const auto& [name, frames] : reported) {
        EXPECT_NE(list.out.find("Imported\t" + name + "\t"), std::string::npos) << name;
        EXPECT_EQ(readSound(lib + "/" + name + ".wav").frames(), frames) << name;
    }
    // A killed import either kept its source or finished with the sound saved.
    for (const auto& [source, frames] : killed) {
        const std::string name = fs::path(source).stem().string();
        const bool saved = list.out.find("Imported\t" + name + "\t") != std::string::npos;
        EXPECT_TRUE(fs::exists(source) || saved) << source;
        if (saved) {
            EXPECT_EQ(readSound(lib + "/" + name + ".wav").frames(), frames) << name;
        }
    }
    // Every user sound in the store has its whole file.
    for (const std::string& l : lines(list.out)) {
        if (l.rfind("Imported\t", 0) != 0) continue;
        const std::string name = l.substr(9, l.find('\t', 9) - 9);
        EXPECT_TRUE(readSound(lib + "/" + name + ".wav").ok) << name;
    }
    std::printf("imports reported done: %zu, killed: %zu\n", reported.size(), killed.size());
}

TEST_F(TwoProcessesTest, TwoTrimsAtOnceEachWriteTheirOwnSound) {
    // Two takes with sound at different places: each trim must keep its own.
    auto take = [&](const std::string& path, int silentFrames) {
        SF_INFO info{};
        info.samplerate = 44100, info.channels = 1, info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
        std::vector<short> data(88200, 0);
        for (int k = silentFrames; k < silentFrames + 20000; ++k) data[size_t(k)] = short(3000 + k % 5000);
        sf_writef_short(f, data.data(), sf_count_t(data.size()));
        sf_close(f);
    };
    take(dir.file("a.wav"), 1000);
    take(dir.file("b.wav"), 40000);
    ASSERT_EQ(runCli({"trim", dir.file("a.wav"), "-o", dir.file("a-ref.wav")}, env()).status, 0);
    ASSERT_EQ(runCli({"trim", dir.file("b.wav"), "-o", dir.file("b-ref.wav")}, env()).status, 0);
    const std::string aRef = readBytes(dir.file("a-ref.wav")), bRef = readBytes(dir.file("b-ref.wav"));
    ASSERT_NE(aRef, bRef);
    for (int round = 0; round < 8; ++round) {
        CliProcess a({"trim", dir.file("a.wav"), "-o", dir.file("a-out.wav")}, env());
        CliProcess b({"trim", dir.file("b.wav"), "-o", dir.file("b-out.wav")}, env());
        CliResult ra = a.wait(), rb = b.wait();
        ASSERT_EQ(ra.status, 0) << ra.err;
        ASSERT_EQ(rb.status, 0) << rb.err;
        EXPECT_EQ(readBytes(dir.file("a-out.wav")), aRef) << round;
        EXPECT_EQ(readBytes(dir.file("b-out.wav")), bRef) << round;
    }
}

TEST_F(TwoProcessesTest, InterruptedOrFailedRendersLeaveNothingBehind) {
    const std::string lib = dir.file("lib");
    ASSERT_EQ(runCli(cli(lib, {"list", "sounds"}), env()).status, 0);
    for (int signal : {SIGTERM, SIGINT}) {
        const std::string out = dir.file("long.wav");
        CliProcess render(cli(lib, {"render", "loop", "Easy beat 95", "-o", out, "--repeats", "1000"}), env());
        for (int i = 0; i < 400 && !fs::exists(out + ".part"); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ASSERT_TRUE(fs::exists(out + ".part"));
        render.kill(signal);
        CliResult r = render.wait();
        EXPECT_EQ(r.status, 128 + signal) << "killed by " << r.killedBy << "; " << r.err;  // it stopped by itself
        EXPECT_FALSE(fs::exists(out + ".part"));
        EXPECT_FALSE(fs::exists(out));
    }
    // A full disk: the reason, a failure status, and no partial file.
    const std::string small = dir.file("small");
    TestMount disk = TestMount::tmpfs(small, "2m");
    if (!disk.ok()) GTEST_SKIP() << "cannot mount a tmpfs here (needs root): " << std::strerror(errno);
    CliResult full = runCli(cli(lib, {"render", "loop", "Easy beat 95", "-o", small + "/x.wav", "--repeats", "20"}), env());
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.err.find("No space left on device"), std::string::npos) << full.err;
    EXPECT_TRUE(fs::is_empty(small));
}

TEST_F(TwoProcessesTest, BadInputGetsOneLineAndAFailureStatus) {
    const std::string lib = dir.file("lib");
    CliResult quiet = runCli(cli(lib, {"list", "sounds"}), env());
    EXPECT_EQ(quiet.err, "");  // the log goes to its file, not the terminal
    EXPECT_NE(readBytes(state.file("Quillo/quillo.log")).find("baseIsEmpty"), std::string::npos);
    CliResult verbose = runCli({"--verbose", "--library", dir.file("lib2"), "list", "sounds"}, env());
    EXPECT_NE(verbose.err.find("baseIsEmpty"), std::string::npos);

    writeSound(dir.file("whole.wav"), 44100);
    const std::string whole = readBytes(dir.file("whole.wav"));
    std::ofstream(dir.file("cut.wav"), std::ios::binary) << whole.substr(0, whole.size() / 3);
    struct Case {
        std::vector<std::string> args;
        int status;
        const char* says;
    };
    for (const Case& c : {Case{{"trim", dir.file("cut.wav"), "-o", dir.file("t.wav")}, 1, "cannot read"},
                          Case{{"play", "loop", "x", "--seconds", "abc"}, 2, "--seconds needs"},
                          Case{{"play-file", dir.file("whole.wav"), "--seconds", "-1"}, 2, "--seconds needs"},
                          Case{{"render", "loop", "x", "-o", dir.file("r.wav"), "--repeats",
                                "99999999999999999999999"}, 2, "--repeats needs"},
                          Case{{"render", "loop", "Nope", "-o", dir.file("r.wav")}, 1, "no loop named"},
                          Case{{"import", dir.file("cut.wav")}, 1, "not imported"}}) {
        CliResult r = runCli(cli(lib, c.args), env());
        EXPECT_EQ(r.status, c.status) << c.args[0] << ": " << r.err;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    EXPECT_FALSE(fs::exists(dir.file("t.wav")));
    EXPECT_FALSE(fs::exists(dir.file("r.wav")));
    EXPECT_TRUE(fs::exists(dir.file("cut.wav")));
}
