#include "app/cli/CliOptions.h"

#include <algorithm>

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
