#include "app/cli/CliOptions.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

std::optional<std::string> CliArgs::take(const std::string& option) {
    auto it = std::find(args_.begin(), args_.end(), option);
    if (it == args_.end()) return std::nullopt;
    if (it + 1 == args_.end()) {
        error_ = option + " needs a value";
        args_.erase(it);
        return std::nullopt;
    }
    std::string value = *(it + 1);
    args_.erase(it, it + 2);
    return value;
}

bool CliArgs::takeFlag(const std::string& flag) {
    auto it = std::find(args_.begin(), args_.end(), flag);
    if (it == args_.end()) return false;
    args_.erase(it);
    return true;
}

std::optional<long> CliArgs::wholeNumber(const std::string& option, const std::string& text, long lo, long hi) {
    errno = 0;
    char* end = nullptr;
    long v = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || !end || *end || errno == ERANGE || v < lo || v > hi) {
        std::fprintf(stderr, "quillo-cli: %s needs a whole number from %ld to %ld, not \"%s\"\n", option.c_str(), lo,
                     hi, text.c_str());
        return std::nullopt;
    }
    return v;
}

std::optional<double> CliArgs::seconds(const std::string& option, const std::string& text, double lo, double hi) {
    errno = 0;
    char* end = nullptr;
    double v = std::strtod(text.c_str(), &end);
    if (text.empty() || !end || *end || errno == ERANGE || !std::isfinite(v) || v < lo || v > hi) {
        std::fprintf(stderr, "quillo-cli: %s needs a number of seconds from %g to %g, not \"%s\"\n", option.c_str(), lo,
                     hi, text.c_str());
        return std::nullopt;
    }
    return v;
}
