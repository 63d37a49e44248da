#include "library/store/LibraryLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>

namespace {

std::string lockPath(const std::string& folder) { return folder + "/" + LibraryLock::kFileName; }

std::string programName() {
    std::ifstream comm("/proc/self/comm");
    std::string name;
    std::getline(comm, name);
    return name.empty() ? std::string("quillo") : name;
}

bool readHolder(int fd, LibraryLock::Holder* holder) {
    char text[256] = {};
    ssize_t n = ::pread(fd, text, sizeof text - 1, 0);
    if (n <= 0) return false;
    char* end = nullptr;
    long pid = std::strtol(text, &end, 10);
    if (pid <= 0) return false;
    holder->pid = pid;
    std::string program = end ? std::string(end) : std::string();
    while (!program.empty() && (program.front() == ' ')) program.erase(program.begin());
    while (!program.empty() && (program.back() == '\n' || program.back() == ' ')) program.pop_back();
    holder->program = program.empty() ? "another program" : program;
    return true;
}

}  // namespace

std::string LibraryLock::Holder::text() const {
    if (pid <= 0) return "another program";
    return program + " (process " + std::to_string(pid) + ")";
}

std::chrono::milliseconds LibraryLock::defaultWait() {
    if (const char* env = std::getenv("QUILLO_LOCK_WAIT"); env && *env) {
        char* end = nullptr;
        double seconds = std::strtod(env, &end);
        if (end && *end == '\0' && seconds >= 0 && seconds < 3600)
            return std::chrono::milliseconds(static_cast<long>(seconds * 1000));
    }
    return std::chrono::seconds(5);
}

std::unique_ptr<LibraryLock> LibraryLock::acquire(const std::string& folder, std::chrono::milliseconds wait,
                                                  Failure* failure, std::string* reason, Holder* holder) {
    auto fail = [&](Failure f, int error) -> std::unique_ptr<LibraryLock> {
        if (failure) *failure = f;
        if (reason) *reason = error ? std::strerror(error) : std::string();
        return nullptr;
    };
    int fd = ::open(lockPath(folder).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        const int error = errno;
        return fail(error == EROFS || error == EACCES || error == EPERM ? Failure::ReadOnly : Failure::Other, error);
    }
    const auto deadline = std::chrono::steady_clock::now() + wait;
    for (;;) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) break;
        const int error = errno;
        if (error != EWOULDBLOCK && error != EINTR) {
            ::close(fd);
            return fail(Failure::Other, error);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            if (holder) {
                *holder = Holder{};
                readHolder(fd, holder);
            }
            ::close(fd);
            return fail(Failure::Busy, 0);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    // Ours now: name ourselves for whoever waits next.
    const std::string text = std::to_string(::getpid()) + " " + programName() + "\n";
    if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
        // The lock holds even when the note cannot be written (a full disk).
    }
    if (failure) *failure = Failure::None;
    return std::unique_ptr<LibraryLock>(new LibraryLock(fd));
}

bool LibraryLock::holder(const std::string& folder, Holder* holder) {
    int fd = ::open(lockPath(folder).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool held = ::flock(fd, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!held) ::flock(fd, LOCK_UN);
    bool known = held && readHolder(fd, holder);
    ::close(fd);
    return held && (known || (*holder = Holder{}, true));
}

LibraryLock::~LibraryLock() {
    // The note is left: the next holder overwrites it, and removing the file
    // would let two programs lock two different files of the same name.
    ::flock(fd_, LOCK_UN);
    ::close(fd_);
}
