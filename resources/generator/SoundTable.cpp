#include "resources/generator/SoundTable.h"

#include <stdexcept>

namespace resgen {
namespace {

// General MIDI programs (numbered from 0) and drum kits used below.
enum Program : int {
    kGrandPiano = 0,
    kRockOrgan = 18,  // its sixteen-foot drawbar sounds an octave below the key
    kSteelGuitar = 25,
    kCleanGuitar = 27,
    kFingeredBass = 33,
    kFretlessBass = 35,
    kChoirAahs = 52,
    kVoiceOohs = 53,
    kSynthVoice = 54,
    kAltoSax = 65,
    kWarmPad = 89,
    kSpaceVoice = 91,
    kHaloPad = 94,
    kApplause = 126,
};
enum Kit : int { kStandardKit = 0, kPowerKit = 16, kElectronicKit = 24 };

// General MIDI drum notes.
enum Drum : int {
    kSlap = 28,
    kAcousticBassDrum = 35,
    kBassDrum = 36,
    kSideStick = 37,
    kSnare = 38,
    kHandClap = 39,
    kLowFloorTom = 41,
    kClosedHat = 42,
    kLowTom = 45,
    kOpenHat = 46,
    kTambourine = 54,
    kLowConga = 64,
    kLowWoodBlock = 77,
};

constexpr double kShort = 1.9;  // seconds; drums and single notes stay under 2 s
constexpr double kLong = 5.5;   // long variants stay under 6 s

// MIDI note of a note name ("C", "Eb", "F#") in an octave; C4 is 60.
int note(const std::string& name, int octave) {
    static const char* const kNames[] = {"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"};
    for (int pc = 0; pc < 12; ++pc) {
        if (name == kNames[pc]) return 12 * (octave + 1) + pc;
    }
    throw std::invalid_argument("unknown note name " + name);
}

Layer melodic(int program, std::vector<int> notes, double hold, int velocity = 100, int strumMs = 0) {
    return Layer{0, program, std::move(notes), velocity, hold, strumMs};
}

Layer drums(int kit, std::vector<int> notes, int velocity, double hold = 0.4) {
    return Layer{9, kit, std::move(notes), velocity, hold, 0};
}

SoundSpec sound(std::string name, std::string folder, int16_t color, Family family, std::string label,
                std::vector<Layer> layers, int reverb = 20, double maxSeconds = kShort) {
    SoundSpec s;
    s.name = std::move(name);
    s.folder = std::move(folder);
    s.color = color;
    s.family = family;
    s.label = std::move(label);
    s.layers = std::move(layers);
    s.reverb = reverb;
    s.maxSeconds = maxSeconds;
    return s;
}

SoundSpec synthesised(std::string name, std::string folder, int16_t color, Family family, Effect effect) {
    SoundSpec s;
    s.name = std::move(name);
    s.folder = std::move(folder);
    s.color = color;
    s.family = family;
    s.effect = effect;
    return s;
}

// One sustained note of an instrument: "Sax D" is a D in the saxophone's octave.
SoundSpec single(const std::string& prefix, const std::string& noteName, const std::string& suffix,
                 const std::string& folder, int16_t color, Family family, std::vector<int> programs, int octave,
                 double hold, int reverb, double maxSeconds = kShort) {
    std::vector<Layer> layers;
    for (int p : programs) layers.push_back(melodic(p, {note(noteName, octave)}, hold));
    std::string name = prefix + " " + noteName + (suffix.empty() ? "" : " " + suffix);
    return sound(name, folder, color, family, noteName, std::move(layers), reverb, maxSeconds);
}

// A strummed open-position guitar chord, strings from low to high.
SoundSpec guitarChord(const std::string& chord, int16_t color, std::vector<int> strings) {
    return sound("Guitar " + chord + " chord", "Guitar chords", color, Family::Guitar, chord,
                 {melodic(kSteelGuitar, std::move(strings), 1.5, 95, 14)}, 25);
}

// A voice chord rooted at its note: root, fifth and octave, sung by two voice timbres.
SoundSpec polyVoice(const std::string& root, int16_t color) {
    const int r = note(root, 4);
    return sound("Ouoo poly " + root, "Vocals", color, Family::Voice, root,
                 {melodic(kVoiceOohs, {r, r + 7, r + 12}, 1.1), melodic(kChoirAahs, {r, r + 7, r + 12}, 1.1, 80)}, 40);
}

std::vector<SoundSpec> makeTable() {
    std::vector<SoundSpec> t;
    auto add = [&t](SoundSpec s) { t.push_back(std::move(s)); };

    // Sound effects.
    add(sound("Crowd", "SFX", 134, Family::Effect, "", {melodic(kApplause, {60}, 1.7, 110)}, 30, 1.95));
    add(sound("Ha Ab", "SFX", 132, Family::Voice, "Ab",
              {melodic(kChoirAahs, {note("Ab", 4)}, 0.35, 127), melodic(kSynthVoice, {note("Ab", 4)}, 0.35, 110)}, 30, 1.0));
    add(sound("Ha C", "SFX", 131, Family::Voice, "C",
              {melodic(kChoirAahs, {note("C", 4)}, 0.35, 127), melodic(kSynthVoice, {note("C", 4)}, 0.35, 110)}, 30, 1.0));
    add(synthesised("Washer", "SFX", 128, Family::Effect, Effect::Washer));
    add(synthesised("Spraypaint", "SFX", 121, Family::Effect, Effect::Spraypaint));
    add(synthesised("Spraypaint shake", "SFX", 123, Family::Effect, Effect::SpraypaintShake));

    // Turntable effects.
    add(synthesised("Scratch", "Scratches", 122, Family::Turntable, Effect::Scratch));
    add(synthesised("Backspin", "Scratches", 119, Family::Turntable, Effect::Backspin));
    add(synthesised("Backspin end", "Scratches", 117, Family::Turntable, Effect::BackspinEnd));

    // Halo pads.
    add(single("Halo", "C", "", "Halo", 104, Family::Pad, {kHaloPad}, 4, 1.6, 50));
    add(single("Halo", "D", "long", "Halo", 106, Family::Pad, {kHaloPad}, 4, 4.6, 50, 5.8));
    add(single("Halo", "F", "", "Halo", 107, Family::Pad, {kHaloPad}, 4, 1.6, 50));

    // Alto saxophone.
    add(single("Sax", "C", "long", "Sax", 36, Family::Sax, {kAltoSax}, 4, 3.6, 30, kLong));
    add(single("Sax", "C", "", "Sax", 37, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "D", "", "Sax", 38, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "E", "", "Sax", 39, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "F", "", "Sax", 40, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "G", "", "Sax", 41, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "A", "long", "Sax", 42, Family::Sax, {kAltoSax}, 4, 3.6, 30, kLong));
    add(single("Sax", "A", "", "Sax", 43, Family::Sax, {kAltoSax}, 4, 0.8, 30));
    add(single("Sax", "B", "", "Sax", 44, Family::Sax, {kAltoSax}, 4, 0.8, 30));

    // Organs and pads. The organ keys are played in octave 4; with the
    // sixteen-foot drawbar pulled the organ's fundamental is in octave 3.
    add(single("Organ", "E", "", "Pads", 18, Family::Keys, {kRockOrgan}, 4, 0.9, 30));
    add(single("Organ", "F", "long", "Pads", 19, Family::Keys, {kRockOrgan}, 4, 3.8, 30, kLong));
    add(single("Organ", "F", "", "Pads", 20, Family::Keys, {kRockOrgan}, 4, 0.9, 30));
    add(single("Organ pad", "G", "", "Pads", 21, Family::Keys, {kRockOrgan, kWarmPad}, 4, 1.5, 40));
    add(single("Synth pad", "D", "", "Pads", 23, Family::Pad, {kWarmPad}, 4, 1.6, 40));
    add(single("Synth pad", "Eb", "", "Pads", 24, Family::Pad, {kWarmPad}, 4, 1.6, 40));
    add(single("Synth pad", "E", "", "Pads", 25, Family::Pad, {kWarmPad}, 4, 1.6, 40));
    add(single("Synth pad", "F", "", "Pads", 26, Family::Pad, {kWarmPad}, 4, 1.6, 40));

    // Fretless bass drowned in reverb.
    add(single("Reverb Bass", "F", "", "Reverb Bass", 112, Family::Bass, {kFretlessBass}, 2, 0.5, 127));
    add(single("Reverb Bass", "D", "", "Reverb Bass", 110, Family::Bass, {kFretlessBass}, 2, 0.5, 127));
    add(single("Reverb Bass", "C", "", "Reverb Bass", 108, Family::Bass, {kFretlessBass}, 2, 0.5, 127));

    // Voices.
    add(single("Ou", "Db", "", "Vocals", 0, Family::Voice, {kVoiceOohs}, 4, 0.7, 40));
    add(single("Ou", "D", "", "Vocals", 1, Family::Voice, {kVoiceOohs}, 4, 0.7, 40));
    add(single("Ouoo", "Db", "", "Vocals", 2, Family::Voice, {kVoiceOohs, kChoirAahs}, 4, 1.0, 40));
    add(polyVoice("C", 3));
    add(polyVoice("D", 4));
    add(polyVoice("Eb", 5));
    add(polyVoice("E", 6));
    add(single("Uuuuu", "D", "", "Vocals", 7, Family::Voice, {kVoiceOohs, kSpaceVoice}, 4, 1.5, 40));
    add(single("Uuuuu", "E", "", "Vocals", 8, Family::Voice, {kVoiceOohs, kSpaceVoice}, 4, 1.5, 40));

    // Piano in the bass register.
    add(sound("Bass Piano C high", "Bass Piano", 89, Family::Keys, "C",
              {melodic(kGrandPiano, {note("C", 3)}, 1.2)}, 20));
    add(single("Bass Piano", "B", "", "Bass Piano", 88, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "A", "", "Bass Piano", 87, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "G", "", "Bass Piano", 86, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "F", "", "Bass Piano", 85, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "E", "", "Bass Piano", 84, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "D", "", "Bass Piano", 83, Family::Keys, {kGrandPiano}, 2, 1.2, 20));
    add(single("Bass Piano", "C", "", "Bass Piano", 81, Family::Keys, {kGrandPiano}, 2, 1.2, 20));

    // Steel-string guitar chords in open position (E2 = 40 is the low string).
    add(guitarChord("A", 135, {45, 52, 57, 61, 64}));
    add(guitarChord("Am", 136, {45, 52, 57, 60, 64}));
    add(guitarChord("C", 137, {48, 52, 55, 60, 64}));
    add(guitarChord("D", 138, {50, 57, 62, 66}));
    add(guitarChord("Dm", 139, {50, 57, 62, 65}));
    add(guitarChord("E", 140, {40, 47, 52, 56, 59, 64}));
    add(guitarChord("Em", 141, {40, 47, 52, 55, 59, 64}));
    add(guitarChord("F", 142, {41, 48, 53, 57, 60, 65}));
    add(guitarChord("G", 143, {43, 47, 50, 55, 59, 67}));

    // Clean electric guitar, single notes.
    for (auto [n, color] : {std::pair{"C", 27}, {"D", 29}, {"E", 31}, {"F", 32}, {"G", 33}, {"A", 34}, {"B", 35}}) {
        add(single("Guitar", n, "", "Guitar", int16_t(color), Family::Guitar, {kCleanGuitar}, 3, 0.9, 25));
    }

    // Fingered electric bass.
    for (auto [n, color] : {std::pair{"C", 90}, {"D", 91}, {"E", 92}, {"F", 93}, {"Gb", 94}, {"G", 95}, {"Ab", 96},
                            {"A", 96}, {"Bb", 97}, {"B", 98}}) {
        add(single("Clean Bass", n, "", "Clean Bass", int16_t(color), Family::Bass, {kFingeredBass}, 2, 0.8, 10));
    }

    // Drums from the General MIDI kits.
    add(sound("Kick", "Drums", 57, Family::Drum, "", {drums(kStandardKit, {kBassDrum}, 120)}, 10));
    add(sound("Snare", "Drums", 54, Family::Drum, "", {drums(kStandardKit, {kSnare}, 115)}, 20));
    add(sound("Closed Hat", "Drums", 59, Family::Drum, "", {drums(kStandardKit, {kClosedHat}, 100)}, 10));
    add(sound("Open Hat", "Drums", 61, Family::Drum, "", {drums(kStandardKit, {kOpenHat}, 100, 0.35)}, 10, 0.6));
    add(sound("Open Hat long", "Drums", 62, Family::Drum, "", {drums(kStandardKit, {kOpenHat}, 100, 1.8)}, 10));
    add(sound("Fat", "Drums", 63, Family::Drum, "", {drums(kPowerKit, {kAcousticBassDrum, kLowFloorTom}, 127)}, 25));
    add(sound("Kick IDM", "Drums", 65, Family::Drum, "", {drums(kElectronicKit, {kBassDrum}, 120, 0.2)}, 0, 0.35));
    add(sound("Clap", "Drums", 67, Family::Drum, "", {drums(kStandardKit, {kHandClap}, 115)}, 25));
    add(sound("Hah", "Drums", 68, Family::Voice, "",
              {melodic(kChoirAahs, {note("F", 4)}, 0.18, 127), drums(kStandardKit, {kHandClap}, 70)}, 25, 0.8));
    add(sound("Snap", "Drums", 70, Family::Drum, "",
              {drums(kStandardKit, {kSideStick}, 110), drums(kStandardKit, {kSlap}, 80)}, 20));
    add(sound("Tambourine", "Drums", 71, Family::Drum, "", {drums(kStandardKit, {kTambourine}, 105)}, 15));
    add(sound("Tribal drum", "Drums", 45, Family::Drum, "", {drums(kStandardKit, {kLowConga, kLowTom}, 120)}, 30));
    add(sound("Wooden drum", "Drums", 49, Family::Drum, "", {drums(kStandardKit, {kLowWoodBlock}, 115)}, 20));
    return t;
}

}  // namespace

const std::vector<SoundSpec>& soundTable() {
    static const std::vector<SoundSpec> table = makeTable();
    return table;
}

}  // namespace resgen
