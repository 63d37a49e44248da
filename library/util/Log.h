#pragma once
// The program's log: one line per message, appended to
// $XDG_STATE_HOME/Quillo/quillo.log (usually ~/.local/state/Quillo), and
// copied to standard error only when the program runs verbosely: the messages
// a person must see are printed by the program itself, not logged. Never
// called from the render thread. Tests may install a sink to read the lines back.
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>

namespace quillo_log {

using Sink = std::function<void(const std::string&)>;

inline std::mutex& mutex() {
    static std::mutex m;
    return m;
}
inline Sink& sink() {
    static Sink s;
    return s;
}

inline void setSink(Sink s) {
    std::lock_guard<std::mutex> lock(mutex());
    sink() = std::move(s);
}

inline bool& verboseFlag() {
    static bool v = false;
    return v;
}
// --verbose: every log line is copied to standard error as well.
inline void setVerbose(bool verbose) {
    std::lock_guard<std::mutex> lock(mutex());
    verboseFlag() = verbose;
}

// $XDG_STATE_HOME/Quillo/quillo.log, else ~/.local/state/Quillo/quillo.log.
inline std::string logFilePath() {
    std::string base;
    if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state == '/') base = state;
    else if (const char* home = std::getenv("HOME"); home && *home) base = std::string(home) + "/.local/state";
    else return std::string();
    return base + "/Quillo/quillo.log";
}

// Opened on the first line; a log that cannot be written is skipped, never fatal.
inline FILE* logFile() {
    static FILE* file = [] () -> FILE* {
        std::string path = logFilePath();
        if (path.empty()) return nullptr;
        std::string dir = path.substr(0, path.rfind('/'));
        for (size_t at = 1; at != std::string::npos; at = dir.find('/', at + 1)) {
            ::mkdir(dir.substr(0, at).c_str(), 0700);
        }
        ::mkdir(dir.c_str(), 0700);
        return std::fopen(path.c_str(), "ae");
    }();
    return file;
}

inline void write(const std::string& line, bool toStderr = false) {
    std::lock_guard<std::mutex> lock(mutex());
    if (sink()) {
        sink()(line);
        return;
    }
    const int savedErrno = errno;  // logging never changes the caller's error
    std::string out = line;
    if (out.empty() || out.back() != '\n') out.push_back('\n');
    if (FILE* f = logFile()) {
        std::fwrite(out.data(), 1, out.size(), f);
        std::fflush(f);
    }
    if (toStderr || verboseFlag()) std::fwrite(out.data(), 1, out.size(), stderr);
    errno = savedErrno;
}

inline std::string format(const char* format, va_list args) {
    char stackBuf[512];
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(stackBuf, sizeof stackBuf, format, args);
    std::string line;
    if (n >= 0 && static_cast<size_t>(n) < sizeof stackBuf) {
        line.assign(stackBuf, static_cast<size_t>(n));
    } else if (n >= 0) {
        line.resize(static_cast<size_t>(n) + 1);
        std::vsnprintf(line.data(), line.size(), format, copy);
        line.resize(static_cast<size_t>(n));
    }
    va_end(copy);
    return line;
}

}  // namespace quillo_log

// printf-style log line.
__attribute__((format(printf, 1, 2))) inline void qlog(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string line = quillo_log::format(format, args);
    va_end(args);
    quillo_log::write(line);
}

// A log line that also always reaches standard error: the last words of a
// process that is about to end.
__attribute__((format(printf, 1, 2))) inline void qlogFatal(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string line = quillo_log::format(format, args);
    va_end(args);
    quillo_log::write(line, true);
}
