// Where in a recording the test sound's bursts are, to some milliseconds.
#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "fine/base_band.h"
#include "testsound/sound_design.h"

namespace orvex::fine {

// The positions, in samples, at which the bursts of one tone seem to begin, in the order of the pairs; none: the burst
// lies outside the recording, or is not heard.
struct ToneBursts {
  std::vector<std::optional<std::int64_t>> positions;
  double noisePower = 0.0;  // of the base band between the bursts, at least that of rounding to whole samples
};

// How many steps a search has. They take about equally long.
std::size_t SearchSteps(const tools::SoundDesign& sound);

// The two tones, up to 900 ms apart, at the place in the recording where most is heard of all their bursts; a distance
// that a run cannot measure takes a recording in which all of them are heard. Bursts are as far apart as in the sound,
// less whole blocks that the remote has lost. A tone of which nothing is heard has no positions. Calls `onStep` after
// each step, and is pure otherwise.
std::array<ToneBursts, 2> FindBursts(const std::array<Samples, 2>& ofTones, const tools::SoundDesign& sound,
                                     const std::function<void()>& onStep);

}  // namespace orvex::fine
