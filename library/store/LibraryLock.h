#pragma once
// One writer per library folder. A program that may change the library holds
// an exclusive lock on the folder's lock file for as long as it may write;
// the file names the holder (process id and program) so that another writer
// can say who is in the way. Readers take no lock: the store's own journal
// lets them read alongside the writer. The lock goes with the process, so a
// killed program never leaves a library locked.
#include <chrono>
#include <memory>
#include <string>

class LibraryLock {
public:
    static constexpr const char* kFileName = ".quillo-writer.lock";

    struct Holder {
        long pid = 0;
        std::string program;
        std::string text() const;  // "quillo (process 1234)"
    };

    enum class Failure { None, Busy, ReadOnly, Other };

    // Takes the lock of `folder`, waiting up to `wait` for another writer to
    // finish. On failure returns null and says why: Busy (with the holder,
    // when known), ReadOnly (the folder cannot be written), or Other, with
    // the system's reason in *reason.
    static std::unique_ptr<LibraryLock> acquire(const std::string& folder, std::chrono::milliseconds wait,
                                                Failure* failure, std::string* reason, Holder* holder);
    // How long writers wait: $QUILLO_LOCK_WAIT seconds, else 5.
    static std::chrono::milliseconds defaultWait();
    // Who holds the lock of `folder` now; false when nobody does.
    static bool holder(const std::string& folder, Holder* holder);

    ~LibraryLock();
    LibraryLock(const LibraryLock&) = delete;
    LibraryLock& operator=(const LibraryLock&) = delete;

private:
    explicit LibraryLock(int fd) : fd_(fd) {}
    int fd_;
};
