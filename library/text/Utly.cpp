#include "library/text/Utly.h"

#include <cctype>
#include <cstring>

#include "library/CoreDater.h"
#include "library/text/Localized.h"
#include "library/util/Log.h"

std::string Utly::deleteBadCharactersFromString(const std::string& text) {
    static const char kBad[] = "'#%^&{}[]();:/~|?.<,>\"";
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (!std::strchr(kBad, c) || c == '\0') out.push_back(c);
    }
    return out;
}

bool Utly::stringContainOnlyWhitespaces(const std::string& text) {
    for (unsigned char c : text) {
        if (!std::isspace(c)) return false;
    }
    return true;
}

bool Utly::stringContainOnlyWhitespaces(const char* text) {
    return text == nullptr || stringContainOnlyWhitespaces(std::string(text));
}

std::string Utly::changeNameOf(const std::string& entity, const std::string& wanted) {
    std::string base = stringContainOnlyWhitespaces(wanted) ? localized(entity.c_str()) : wanted;
    CoreDater& store = CoreDater::shIns();
    if (!store.findEntity(entity, base)) return base;
    for (int n = 2;; ++n) {
        std::string candidate = base + " " + std::to_string(n);
        if (!store.findEntity(entity, candidate)) return candidate;
        qlog("exist %s", (base + " " + std::to_string(n + 1)).c_str());
    }
}
