#pragma once
// The names of the built-in sounds as the library knows them, folder by
// folder. Written out here, not taken from the generator, so that a
// misspelt or missing file is caught.
#include <string>
#include <vector>

inline const std::vector<std::string>& builtinSoundNames() {
    static const std::vector<std::string> names = {
        "Crowd", "Ha Ab", "Ha C", "Washer", "Spraypaint", "Spraypaint shake",
        "Scratch", "Backspin", "Backspin end",
        "Halo C", "Halo D long", "Halo F",
        "Sax C long", "Sax C", "Sax D", "Sax E", "Sax F", "Sax G", "Sax A long", "Sax A", "Sax B",
        "Organ E", "Organ F long", "Organ F", "Organ pad G", "Synth pad D", "Synth pad Eb", "Synth pad E",
        "Synth pad F",
        "Reverb Bass F", "Reverb Bass D", "Reverb Bass C",
        "Ou Db", "Ou D", "Ouoo Db", "Ouoo poly C", "Ouoo poly D", "Ouoo poly Eb", "Ouoo poly E", "Uuuuu D",
        "Uuuuu E",
        "Bass Piano C high", "Bass Piano B", "Bass Piano A", "Bass Piano G", "Bass Piano F", "Bass Piano E",
        "Bass Piano D", "Bass Piano C",
        "Guitar A chord", "Guitar Am chord", "Guitar C chord", "Guitar D chord", "Guitar Dm chord",
        "Guitar E chord", "Guitar Em chord", "Guitar F chord", "Guitar G chord",
        "Guitar C", "Guitar D", "Guitar E", "Guitar F", "Guitar G", "Guitar A", "Guitar B",
        "Clean Bass C", "Clean Bass D", "Clean Bass E", "Clean Bass F", "Clean Bass Gb", "Clean Bass G",
        "Clean Bass Ab", "Clean Bass A", "Clean Bass Bb", "Clean Bass B",
        "Kick", "Snare", "Closed Hat", "Open Hat", "Open Hat long", "Fat", "Kick IDM", "Clap", "Hah", "Snap",
        "Tambourine", "Tribal drum", "Wooden drum",
    };
    return names;
}

inline std::string soundsDir() { return QUILLO_TEST_SOUNDS_DIR; }
