// How a burst of the test sound looks after the low-pass of base_band.h.
#pragma once

#include <vector>

#include "testsound/sound_design.h"

namespace orvex::fine {

// The envelope of an undisturbed burst of amplitude 1 that begins at `s` = 0; 0 outside 0 to the burst's end. Its ramps
// are raised cosines.
double BurstEnvelope(double s, const tools::SoundDesign& sound);

// The same after the low-pass, at any time: the filter at the recording's nominal rate, applied to the envelope. Pure;
// threads may share one object.
class FilteredBurst {
public:
  explicit FilteredBurst(const tools::SoundDesign& sound);

  // Seconds from the burst's beginning. Valid on the rise and the plateau, up to the fall of the burst: what comes
  // later counts as plateau. Interpolated linearly between points 2 us apart.
  double operator()(double s) const;
  // When the rise reaches `share`, 0 to 0.99, of the plateau.
  double TimeOf(double share) const;

private:
  std::vector<double> m_Points;
};

}  // namespace orvex::fine
