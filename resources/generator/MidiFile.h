#pragma once
// A minimal standard MIDI file (format 0, one track) that plays a sound's
// layers once, for the soundfont renderer.
#include <cstdint>
#include <string>
#include <vector>

#include "resources/generator/SoundTable.h"

namespace resgen {

// The file's bytes. Melodic layers get channels 0, 1, 2, ... in order; drum
// layers share channel 9. The track ends a little after the last note off.
std::vector<uint8_t> midiFileForSound(const SoundSpec& sound);

}  // namespace resgen
