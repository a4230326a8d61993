// The bursts of one tone, laid over one another.
//
// The bursts of a sound reach the microphone through the same room, so that they are alike but for the noise, a factor
// of phase, and a place between two samples. What is not like the others, because a block was lost within it or another
// sound was in it, is left out.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fine/base_band.h"
#include "fine/burst_search.h"
#include "fine/burst_shape.h"

namespace orvex::fine {

// Positions are in samples of the recording.
struct AlignedBurst {
  std::size_t pair = 0;
  double position = 0.0;     // of its onset, by that of the reference and the lag of the best correlation
  double correlation = 1.0;  // with the reference, 0 to 1
  double phase = 0.0;        // against the reference, radians
};

struct AlignedBursts {
  std::vector<AlignedBurst> bursts;  // those that are like the others, by pair
  std::size_t reference = 0;         // index of the one to which lags and phases refer
  double onset = 0.0;                // of the reference, roughly: as positions are
  // The lowest correlation of two bursts that are in use; 1 with a single one.
  double likeness = 1.0;
  bool isCut = false;        // the only burst, and the recording ends within it
  double peakToNoise = 0.0;  // of the bursts' magnitude against the root mean square of the noise in their mean
};

// Of those that the search has found. None in use: none was found, or none rises out of the noise. `usableEnd`: the
// first position at which the base band misses samples of the recording.
AlignedBursts Align(const Samples& samples, const BaseBand& band, const FilteredBurst& shape, const ToneBursts& found,
                    std::int64_t usableEnd);

// The mean of the bursts in use at the offsets from a position of the reference, which must be a whole sample. The
// reference's own part in it is not turned, the others are turned onto it. `turnPerSample`, in radians, is taken off
// per sample: the error of the recording's rate turns the tone on.
std::vector<std::complex<double>> MeanOf(const Samples& samples, const BaseBand& band, const AlignedBursts& aligned,
                                         std::int64_t position, const std::vector<std::int64_t>& offsets,
                                         double turnPerSample);

// By how much, in samples, the onset in that mean is later than in the reference: the others are moved by whole
// samples.
double RoundingOf(const AlignedBursts& aligned);

}  // namespace orvex::fine
