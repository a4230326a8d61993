// Makes the samples of a test sound from its design.
#pragma once

#include <cstdint>
#include <vector>

#include "testsound/sound_design.h"

namespace orvex::tools {

// Interleaved stereo at kSoundRateHz, the same samples for the same design. Throws std::invalid_argument, naming the
// value, for a design that cannot be made: a negative time, ramps longer than the burst, bursts that overlap, a level
// above 0 dBFS or a sound longer than a minute. Whether the sound serves its purpose is the checker's question.
std::vector<std::int16_t> GenerateSound(const SoundDesign& design);

}  // namespace orvex::tools
