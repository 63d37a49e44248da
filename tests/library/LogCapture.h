#pragma once
// Collects the log lines written while it lives.
#include <mutex>
#include <string>
#include <vector>

#include "library/util/Log.h"

class LogCapture {
public:
    LogCapture() {
        quillo_log::setSink([this](const std::string& line) { lines_.push_back(line); });
    }
    ~LogCapture() { quillo_log::setSink(nullptr); }
    const std::vector<std::string>& lines() const { return lines_; }
    // Safe while other threads log.
    bool contains(const std::string& text) const {
        std::lock_guard<std::mutex> lock(quillo_log::mutex());
        for (const std::string& l : lines_) {
            if (l.find(text) != std::string::npos) return true;
        }
        return false;
    }

private:
    std::vector<std::string> lines_;
};
