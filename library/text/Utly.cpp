#include "library/text/Utly.h"

#include <QList>
#include <QString>
#include <cstring>

#include "library/CoreDater.h"
#include "library/text/Localized.h"
#include "library/util/Log.h"

namespace {

bool breaksTheLine(char32_t c) {
    return c < 0x20 || c == 0x7f || (c >= 0x80 && c < 0xa0) || c == 0x2028 || c == 0x2029;
}

// The longest prefix of `text` of at most `bytes` bytes that ends on a UTF-8
// character boundary.
std::string utf8Prefix(const std::string& text, size_t bytes) {
    if (text.size() <= bytes) return text;
    size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

}  // namespace

std::string Utly::deleteBadCharactersFromString(const std::string& text) {
    static const char kBad[] = "'#%^&{}[]();:/~|?.<,>\"";
    std::string out;
    out.reserve(text.size());
    for (char c : oneLine(text)) {
        if (!std::strchr(kBad, c) || c == '\0') out.push_back(c);
    }
    return out;
}

std::string Utly::oneLine(const std::string& text) {
    QString in = QString::fromStdString(text);
    QString out;
    out.reserve(in.size());
    for (uint c : in.toUcs4()) {
        const char32_t ch = static_cast<char32_t>(c);
        if (!breaksTheLine(ch)) out.append(QString::fromUcs4(&ch, 1));
    }
    return out.toStdString();
}

bool Utly::stringContainOnlyWhitespaces(const std::string& text) {
    return QString::fromStdString(text).trimmed().isEmpty();
}

bool Utly::stringContainOnlyWhitespaces(const char* text) {
    return text == nullptr || stringContainOnlyWhitespaces(std::string(text));
}

std::string Utly::changeNameOf(const std::string& entity, const std::string& wanted) {
    return changeNameOf(entity, wanted, nullptr, std::string::npos);
}

std::string Utly::changeNameOf(const std::string& entity, const std::string& wanted,
                               const std::function<bool(const std::string&)>& taken, size_t maxBytes) {
    std::string line = oneLine(wanted);
    std::string base = stringContainOnlyWhitespaces(line) ? localized(entity.c_str()) : line;
    CoreDater& store = CoreDater::shIns();
    auto isFree = [&](const std::string& name) { return !store.findEntity(entity, name) && !(taken && taken(name)); };
    std::string first = utf8Prefix(base, maxBytes);
    if (isFree(first)) return first;
    for (int n = 2;; ++n) {
        std::string suffix(1, ' ');
        suffix += std::to_string(n);
        std::string candidate =
            utf8Prefix(base, maxBytes == std::string::npos ? std::string::npos : maxBytes - suffix.size());
        candidate.append(suffix);
        if (isFree(candidate)) return candidate;
        qlog("exist %s %d", base.c_str(), n + 1);
    }
}
