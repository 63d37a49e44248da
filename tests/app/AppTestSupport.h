#pragma once
// Real files, real mounts and real quillo-cli processes for the application tests.
#include <fcntl.h>
#include <signal.h>
#include <sndfile.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/library/TestStore.h"

namespace apptest {

// The one application object of the test process (translations, local sockets).
inline QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "test_app";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    return app;
}

// A sound whose every frame is known: sample k of channel c is (k * 7 + c * 1000) % 20000 - 10000,
// so a file holding it can be checked frame by frame.
inline int16_t sampleAt(int64_t frame, int channel) {
    return static_cast<int16_t>((frame * 7 + channel * 1000) % 20000 - 10000);
}

inline void writeSound(const std::string& path, int frames, int rate = 44100, int channels = 2,
                       int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(f, nullptr) << sf_strerror(nullptr);
    std::vector<short> data(static_cast<size_t>(frames) * channels);
    for (int k = 0; k < frames; ++k)
        for (int c = 0; c < channels; ++c) data[size_t(k) * channels + c] = sampleAt(k, c);
    sf_writef_short(f, data.data(), frames);
    sf_close(f);
}

struct SoundFile {
    bool ok = false;
    int rate = 0, channels = 0, format = 0;
    std::vector<short> samples;  // interleaved
    int64_t frames() const { return channels ? int64_t(samples.size()) / channels : 0; }
};

inline SoundFile readSound(const std::string& path) {
    SoundFile s;
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    if (!f) return s;
    s.rate = info.samplerate;
    s.channels = info.channels;
    s.format = info.format;
    s.samples.resize(size_t(info.frames) * info.channels);
    s.ok = sf_readf_short(f, s.samples.data(), info.frames) == info.frames;
    sf_close(f);
    return s;
}

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// A mount made for one test and undone after it. Tests run as root here; when
// mounting is not allowed, ok() is false and the test skips.
class TestMount {
public:
    // A tmpfs of `size` (e.g. "2m") at `dir`.
    static TestMount tmpfs(const std::string& dir, const std::string& size) {
        TestMount m;
        std::filesystem::create_directories(dir);
        m.ok_ = ::mount("tmpfs", dir.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
        if (m.ok_) m.dir_ = dir;
        return m;
    }
    // `dir` itself, made read-only (a read-only bind mount over it).
    static TestMount readOnly(const std::string& dir) {
        TestMount m;
        if (::mount(dir.c_str(), dir.c_str(), nullptr, MS_BIND, nullptr) != 0) return m;
        m.dir_ = dir;
        m.ok_ = ::mount(nullptr, dir.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
        return m;
    }
    TestMount() = default;
    TestMount(TestMount&& o) noexcept : ok_(o.ok_), dir_(std::move(o.dir_)) { o.dir_.clear(); }
    ~TestMount() {
        if (!dir_.empty()) ::umount2(dir_.c_str(), MNT_DETACH);
    }
    bool ok() const { return ok_; }

private:
    bool ok_ = false;
    std::string dir_;
};

struct CliResult {
    int status = -1;     // exit status; -1 when a signal ended it
    int killedBy = 0;    // that signal
    std::string out, err;
};

inline std::string drain(int fd) {
    std::string text;
    char buf[4096];
    ssize_t n;
    while ((n = ::read(fd, buf, sizeof buf)) > 0) text.append(buf, size_t(n));
    ::close(fd);
    return text;
}

// A quillo-cli process started with `args` and extra environment entries.
class CliProcess {
public:
    CliProcess(const std::vector<std::string>& args, const std::map<std::string, std::string>& env = {}) {
        int out[2], err[2];
        if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(out[1], 1);
            ::dup2(err[1], 2);
            for (const auto& [k, v] : env) ::setenv(k.c_str(), v.c_str(), 1);
            std::vector<char*> argv;
            std::string program = QUILLO_CLI_PATH;
            argv.push_back(program.data());
            std::vector<std::string> copy = args;
            for (std::string& a : copy) argv.push_back(a.data());
            argv.push_back(nullptr);
            ::execv(program.c_str(), argv.data());
            ::_exit(127);
        }
        ::close(out[1]);
        ::close(err[1]);
        outFd_ = out[0];
        errFd_ = err[0];
    }
    pid_t pid() const { return pid_; }
    void kill(int signal) { ::kill(pid_, signal); }
    CliResult wait() {
        CliResult r;
        // Read both pipes on their own threads so that neither fills up.
        std::thread errReader([&] { r.err = drain(errFd_); });
        r.out = drain(outFd_);
        errReader.join();
        int status = 0;
        ::waitpid(pid_, &status, 0);
        if (WIFEXITED(status)) r.status = WEXITSTATUS(status);
        else r.killedBy = WTERMSIG(status);
        return r;
    }

private:
    pid_t pid_ = -1;
    int outFd_ = -1, errFd_ = -1;
};

inline CliResult runCli(const std::vector<std::string>& args, const std::map<std::string, std::string>& env = {}) {
    return CliProcess(args, env).wait();
}


}  // namespace apptest
