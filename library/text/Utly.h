#pragma once
// Naming rules shared by the store and the screens.
#include <cstddef>
#include <functional>
#include <string>

class Utly {
public:
    // Removes every character of '#%^&{}[]();:/~|?.<,>" (and the apostrophe),
    // and control characters.
    static std::string deleteBadCharactersFromString(const std::string& text);
    // A name is one line: control characters (tabs, line ends, escapes) and
    // the Unicode line and paragraph separators are removed.
    static std::string oneLine(const std::string& text);
    // True when the text is empty after trimming white space and line ends
    // (any Unicode white space); an absent text (null) counts as blank.
    static bool stringContainOnlyWhitespaces(const std::string& text);
    static bool stringContainOnlyWhitespaces(const char* text);
    // A name not yet used by any object of the entity ("Sound", "Loop",
    // "Track"): the wanted name made one line, or it with " 2", " 3" ...
    // appended. A blank name becomes the entity's default name.
    static std::string changeNameOf(const std::string& entity, const std::string& wanted);
    // As above, and also not `taken` (say, by a file on disk), and at most
    // maxBytes long in UTF-8 (the stem is shortened at a character boundary
    // to leave room for the number).
    static std::string changeNameOf(const std::string& entity, const std::string& wanted,
                                    const std::function<bool(const std::string&)>& taken, size_t maxBytes);
};
