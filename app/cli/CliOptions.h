#pragma once
// Command-line parsing shared by every quillo-cli command.
#include <optional>
#include <string>
#include <vector>

struct CliContext {
    std::string libraryFolder;        // from --library, or the default
    std::vector<std::string> args;    // the command's own arguments
};

// Splits "--name value" options off the command's arguments. Unknown options
// are left in place so the command can complain about them.
class CliArgs {
public:
    explicit CliArgs(std::vector<std::string> args) : args_(std::move(args)) {}
    std::optional<std::string> take(const std::string& option);  // --opt VALUE
    bool takeFlag(const std::string& flag);                      // --flag
    const std::vector<std::string>& rest() const { return args_; }
    std::string error() const { return error_; }

    // A whole number from lo to hi, or a number of seconds from lo to hi;
    // anything else (words, overflow, out of range) prints "OPTION needs ..."
    // on stderr and gives nullopt.
    static std::optional<long> wholeNumber(const std::string& option, const std::string& text, long lo, long hi);
    static std::optional<double> seconds(const std::string& option, const std::string& text, double lo, double hi);

private:
    std::vector<std::string> args_;
    std::string error_;
};
