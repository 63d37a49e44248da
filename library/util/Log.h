#pragma once
// The program's log: one line per message on standard error, like a console
// log. Never called from the render thread. Tests may install a sink to read
// the lines back.
#include <cstdarg>
#include <cstdio>
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

inline void write(const std::string& line) {
    std::lock_guard<std::mutex> lock(mutex());
    if (sink()) {
        sink()(line);
        return;
    }
    std::string out = line;
    if (out.empty() || out.back() != '\n') out.push_back('\n');
    std::fwrite(out.data(), 1, out.size(), stderr);
}

}  // namespace quillo_log

// printf-style log line.
__attribute__((format(printf, 1, 2))) inline void qlog(const char* format, ...) {
    char stackBuf[512];
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(stackBuf, sizeof stackBuf, format, args);
    va_end(args);
    std::string line;
    if (n >= 0 && static_cast<size_t>(n) < sizeof stackBuf) {
        line.assign(stackBuf, static_cast<size_t>(n));
    } else if (n >= 0) {
        line.resize(static_cast<size_t>(n) + 1);
        std::vsnprintf(line.data(), line.size(), format, copy);
        line.resize(static_cast<size_t>(n));
    }
    va_end(copy);
    quillo_log::write(line);
}
