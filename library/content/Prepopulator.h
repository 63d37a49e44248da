#pragma once
// Quillo's built-in library: 88 sounds in twelve folders, 18 loops and two
// tracks, created into an empty store at first launch (and again whenever the
// store holds no sound at all). Everything made here is built-in ("preloaded"):
// the sounds' files are program resources named after them, and the loops and
// tracks are copied before the user edits them.
//
// The content is fixed data written as store calls, in a fixed order: each
// creation stamps the time, so the last one made is listed first.
//
// The same class holds the generator the content was authored with: it prints
// the loops and tracks made in the program as content-script text, so that a
// developer can paste them in here as new built-in content.
#include <string>

class Prepopulator {
public:
    // Texts used as localisation keys.
    static constexpr const char* kVelminName = "Ardo Velmin";              // artist of every built-in loop and track
    static constexpr const char* kFolderNameBuiltinLoops = "Built-in loops";
    static constexpr const char* kUnknownArtist = "Unknown artist";
    static constexpr const char* kTormenaName = "Iska Tormena";

    // The sounds, group by group; afterwards only the "Drums", "Vocals" and
    // "Bass Piano" sound folders stay expanded.
    static void createSounds();
    static void addSoundsSFXs();
    static void addSoundsScratches();
    static void addSoundsHalo();
    static void addSoundsSaxs();
    static void addSoundsPads();
    static void addSoundsReverbBass();
    static void addSoundsVocals();
    static void addSoundsBassPiano();
    static void addSoundsGuitarChords();
    static void addSoundsGuitars();
    static void addSoundsCleanBass();
    static void addSoundsDrums();

    // The loops, one operation each; afterwards only the built-in loops
    // folder stays expanded. Needs the sounds.
    static void createLoops();
    static void createLoopktsxs3();
    static void createLoopktsxs1();
    static void createLoopktsxs2();
    static void createLoopktsmpl2();
    static void createLoopktsmpl1();
    static void createLoopktbeat2();
    static void createLoopktbeat1();
    static void createLoopweird1();
    static void createLoopweird2();
    static void createLoopweird3();
    static void createLoopweird4();
    static void createLoopEasybeat95();
    static void createLoopAmFCE50();
    static void createLoopdcsaxes90();
    static void createLoopdcbasses110();
    static void createLoopGuitarize85();
    static void createLoopSpring90();
    static void createLoopAnxiouspads();

    // The tracks. Needs the loops (found by name).
    static void createTracks();
    static void createTrackDornAshbyHotel();
    static void createTrackWeird140();

    // Development generator: the source text of every user loop, then of
    // every user track, written to the log as one message and returned.
    static std::string printLoopSAnfdtracks();
    static std::string printLoops();
    static std::string printTracks();
};
