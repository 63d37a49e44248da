#pragma once
// Naming rules shared by the store and the screens.
#include <string>

class Utly {
public:
    // Removes every character of '#%^&{}[]();:/~|?.<,>" (and the apostrophe).
    static std::string deleteBadCharactersFromString(const std::string& text);
    // True when the text is empty after trimming white space and line ends;
    // an absent text (null) counts as blank.
    static bool stringContainOnlyWhitespaces(const std::string& text);
    static bool stringContainOnlyWhitespaces(const char* text);
    // A name not yet used by any object of the entity ("Sound", "Loop",
    // "Track"): the wanted name, or it with " 2", " 3" ... appended.
    static std::string changeNameOf(const std::string& entity, const std::string& wanted);
};
