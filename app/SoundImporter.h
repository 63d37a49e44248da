#pragma once
// Importing a sound file handed over by another program (or the command
// line) as a new user sound in the folder "Imported", as one operation that
// either completes or leaves everything as it was:
//
//   1. the file is decoded completely (any format the engine's loader reads)
//      and written as a 16-bit WAV in the engine's format to a temporary
//      name inside the library folder, then flushed to disk;
//   2. it is renamed to the sound's file, under a name that is free both in
//      the store and on disk and fits the file system;
//   3. the sound is created and the store saved;
//   4. only then is the handed-over file deleted (never when it lies inside
//      the library folder itself: it may be another sound's file).
//
// When a step fails, whatever was written is removed, the store and the
// handed-over file stay as they were, and the outcome says why.
// Main thread only; the library must be open for writing.
#include <string>

class Sound;

struct ImportOutcome {
    Sound* sound = nullptr;  // the new sound; null when nothing was imported
    std::string error;       // why not, one line with the system's reason
    std::string warning;     // imported, but the handed-over file could not be removed
};

class SoundImporter {
public:
    // Longest sound accepted, in seconds; longer files are refused.
    static constexpr double kMaxSeconds = 3600.0;

    // `url`: a "file://" URL or a path (relative paths are taken from the
    // current folder).
    static ImportOutcome importFile(const std::string& url);
};
