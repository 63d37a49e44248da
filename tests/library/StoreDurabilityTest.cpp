// A process killed at any moment leaves a store that opens, passes SQLite's
// integrity check, and holds every save that had returned.
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <set>

#include "tests/library/TestStore.h"

namespace {

// Child: one sound per save, and after each save returns, its number down the pipe.
[[noreturn]] void saveForever(const std::string& path, int first, int ackFd) {
    auto store = LibraryStore::open(path, nullptr);
    if (!store) _exit(3);
    for (int n = first;; ++n) {
        auto* s = store->insert<Sound>();
        s->setName("take " + std::to_string(n));
        s->setColor(static_cast<int16_t>(n));
        if (n % 3 == 0) {
            // Bigger transactions too, touching rows written before.
            for (auto* old : store->all<Sound>()) old->setArtist("pass " + std::to_string(n));
        }
        if (!store->save()) _exit(4);
        if (write(ackFd, &n, sizeof n) != sizeof n) _exit(5);
    }
}

}  // namespace

TEST(StoreDurability, KilledWriterLosesNoReturnedSave) {
    TempDir dir;
    std::string path = dir.file(LibraryStore::kFileName);
    std::mt19937 rng(20261121);
    int next = 0;
    int lastAcked = -1;
    for (int round = 0; round < 25; ++round) {
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            close(fds[0]);
            saveForever(path, next, fds[1]);
        }
        close(fds[1]);
        usleep(2000 + rng() % 40000);
        kill(pid, SIGKILL);
        int status = 0;
        waitpid(pid, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "writer stopped by itself, status " << status;
        int n;
        while (read(fds[0], &n, sizeof n) == sizeof n) lastAcked = n;
        close(fds[0]);

        ASSERT_EQ(integrity(path), "ok") << "round " << round;
        StoreError error;
        auto store = LibraryStore::open(path, &error);
        ASSERT_TRUE(store) << error.text();
        std::set<std::string> names;
        for (auto* s : store->all<Sound>()) names.insert(s->name());
        for (int k = 0; k <= lastAcked; ++k)
            ASSERT_TRUE(names.count("take " + std::to_string(k))) << "lost take " << k << " in round " << round;
        next = static_cast<int>(names.size());
    }
    EXPECT_GT(lastAcked, 25) << "the writer barely ran; the test proved little";
}

TEST(StoreDurability, ANewStoreOpenedByManyProgramsAtOnceIsCreatedOnce) {
    for (int round = 0; round < 10; ++round) {
        TempDir dir;
        const std::string path = dir.file(LibraryStore::kFileName);
        int go[2];
        ASSERT_EQ(pipe(go), 0);
        std::vector<pid_t> children;
        for (int k = 0; k < 4; ++k) {
            pid_t pid = fork();
            ASSERT_GE(pid, 0);
            if (pid == 0) {
                close(go[1]);
                char c;
                if (read(go[0], &c, 1) != 0) _exit(9);  // all start when the pipe closes
                StoreError error;
                auto store = LibraryStore::open(path, &error);
                if (!store) {
                    std::fprintf(stderr, "%s\n", error.text().c_str());
                    _exit(1);
                }
                store->insert<Sound>()->setName("from " + std::to_string(k));
                _exit(store->save() ? 0 : 2);
            }
            children.push_back(pid);
        }
        close(go[0]);
        close(go[1]);
        for (pid_t pid : children) {
            int status = 0;
            waitpid(pid, &status, 0);
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "round " << round << " status " << status;
        }
        EXPECT_EQ(integrity(path), "ok");
    }
}
