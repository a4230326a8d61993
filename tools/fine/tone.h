// One tone of a recording: its bursts, and what they tell together with those of the other tone. Pure.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fine/base_band.h"
#include "fine/burst_alignment.h"
#include "fine/burst_search.h"
#include "testsound/sound_design.h"

namespace orvex::fine {

// What is known of one tone.
struct Tone {
  double hz = 0.0;
  const BaseBand* band = nullptr;  // not owned
  Samples samples;
  ToneBursts found;
  AlignedBursts aligned;

  std::string Name() const;  // "17 kHz"
  // The burst of the pair, when it is in use; else null.
  const AlignedBurst* Burst(std::size_t pair) const;
};

// Samples from `begin` up to `end`.
struct Span {
  std::int64_t begin = 0;
  std::int64_t end = 0;
};

// Larger errors of the remote's rate, as a share of it, are none.
constexpr double kLargestRateError = 2.5e-3;

// The largest group of pairs whose tones are equally far apart. A pair whose tones are closer than those of another one
// by whole blocks has lost them in between, and is in no group; neither is one whose tones are further apart than a run
// can measure, unless all bursts are in use.
std::vector<std::size_t> AgreeingPairs(const std::array<Tone, 2>& tones, int pairs);

// How much faster than its nominal rate the remote samples, by the distances of the bursts of each tone, whole lost
// blocks added; none: no tone has two bursts in use.
std::optional<double> RateError(const std::array<Tone, 2>& tones, const tools::SoundDesign& sound);

// Where the reference burst neither rises nor falls, as far as the recording goes.
Span PlateauOf(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound);

// How alike what sounds within the plateaus of the bursts in use is to itself a length of the low-pass later, 0 to 1: 1
// of a steady tone of any frequency, less of what grows, decays or is noise. None: too little of them is in the
// recording.
std::optional<double> Steadiness(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound);

// By how much the frequency within the span differs from the tone's, as a share of it: by what values `distance`
// samples apart have turned. 0 where the span is too short for that.
double FrequencyError(const Samples& samples, const Tone& tone, const Span& span, std::size_t distance);

// The same as RateError() by the frequency of the tone within the reference burst; 0 when that is not to be read.
double RateErrorOfOne(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound);

}  // namespace orvex::fine
