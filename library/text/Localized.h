#pragma once
// User-visible texts are looked up with their English text as the key, so the
// English build needs no table and a translation only has to map keys.
#include <string>

std::string localized(const char* key);
inline std::string localized(const std::string& key) { return localized(key.c_str()); }

// Loads the translation for the system's language (quillo_LANG.qm) from the
// program's translations folder, if one exists; English needs none. Returns
// whether one was loaded. Needs the application object.
bool installTranslations(const std::string& translationsDir);
