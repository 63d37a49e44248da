#pragma once
// Sounds with no General MIDI instrument, synthesised in code: turntable
// scratches, spray-can hiss and rattle, a metal washer clinking down.
// Deterministic: every noise comes from a fixed-seed generator.
#include "resources/generator/SoundFinisher.h"
#include "resources/generator/SoundTable.h"

namespace resgen {

// Mono audio at 44100 Hz, not yet trimmed or normalised.
Audio synthesiseEffect(Effect effect);

}  // namespace resgen
