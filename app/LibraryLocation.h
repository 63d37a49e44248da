#pragma once
#include <string>

// The library folder: --library DIR, else $QUILLO_LIBRARY, else
// $XDG_DATA_HOME/Quillo (usually ~/.local/share/Quillo).
std::string defaultLibraryFolder();
// Creates the folder if needed; returns the store path inside it.
std::string storePathInLibrary(const std::string& folder);
