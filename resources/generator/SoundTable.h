#pragma once
// The built-in sounds: every sound's name, folder and colour number as the
// library creates them, with the recipe the generator renders it from.
//
// Pitches follow one octave per family (middle C is C4, MIDI note 60):
//   saxophones, synth and halo pads, voices and vocal hits: octave 4
//   organs: keys in octave 4, fundamental (sixteen-foot drawbar) in octave 3
//   guitar single notes: octave 3; guitar chords: open first-position voicings
//   basses (Bass Piano, Clean Bass, Reverb Bass): octave 2; "Bass Piano C high" is C3
#include <cstdint>
#include <string>
#include <vector>

namespace resgen {

// What the sound's photo shows.
enum class Family { Drum, Sax, Guitar, Bass, Keys, Pad, Voice, Turntable, Effect };

// Sounds that General MIDI has no instrument for, synthesised in code.
enum class Effect { None, Scratch, Backspin, BackspinEnd, Spraypaint, SpraypaintShake, Washer };

// One instrument part of a soundfont recipe; all its notes start together
// (a strum spreads them by strumMs each, lowest first).
struct Layer {
    int channel = 0;  // 9 is the drum channel: program picks the kit, notes the drums
    int program = 0;
    std::vector<int> notes;
    int velocity = 100;
    double hold = 0.5;  // seconds from note on to note off
    int strumMs = 0;
};

struct SoundSpec {
    std::string name;    // also the file stem: "<name>.wav", "<name>.jpg"
    std::string folder;  // the library folder the sound lives in
    int16_t color = 0;   // palette colour number
    Family family = Family::Effect;
    std::string label;   // the note or chord written on the photo; empty for unpitched sounds
    std::vector<Layer> layers;
    Effect effect = Effect::None;
    int reverb = 0;  // soundfont reverb and chorus sends, 0 to 127
    int chorus = 0;
    double maxSeconds = 1.9;  // the finished file is cut (with a fade) to this length
};

const std::vector<SoundSpec>& soundTable();

}  // namespace resgen
