#pragma once
// Finding library items by name from the command line, with suggestions.
#include <string>
#include <vector>

// Up to three names closest to `wanted` (case-insensitive edit distance, with
// substrings first), for "did you mean" messages.
std::vector<std::string> closeMatches(const std::string& wanted, const std::vector<std::string>& names);
// "no loop named "X"" plus the close matches, as one message.
std::string unknownNameMessage(const std::string& kind, const std::string& wanted,
                               const std::vector<std::string>& names);
