#include "app/cli/NameMatch.h"

#include <algorithm>
#include <cctype>

namespace {
std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diag = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t up = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diag + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diag = up;
        }
    }
    return row[b.size()];
}
}  // namespace

std::vector<std::string> closeMatches(const std::string& wanted, const std::vector<std::string>& names) {
    std::string w = lower(wanted);
    std::vector<std::pair<size_t, std::string>> scored;
    for (const std::string& n : names) {
        std::string l = lower(n);
        size_t score = (!w.empty() && l.find(w) != std::string::npos) ? 0 : 1 + editDistance(w, l);
        if (score <= std::max<size_t>(3, w.size() / 2) + 1) scored.push_back({score, n});
    }
    std::stable_sort(scored.begin(), scored.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::vector<std::string> out;
    for (size_t i = 0; i < scored.size() && i < 3; ++i) out.push_back(scored[i].second);
    return out;
}

std::string unknownNameMessage(const std::string& kind, const std::string& wanted,
                               const std::vector<std::string>& names) {
    std::string m = "quillo-cli: no " + kind + " named \"" + wanted + "\"";
    std::vector<std::string> close = closeMatches(wanted, names);
    if (!close.empty()) {
        m += "; did you mean";
        for (size_t i = 0; i < close.size(); ++i) m += (i ? ", \"" : " \"") + close[i] + "\"";
        m += "?";
    }
    return m;
}
