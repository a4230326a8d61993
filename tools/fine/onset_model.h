// When a burst begins that comes directly, by an early reflection, and with reverberation, in white noise.
//
// Values y of the base band around the onset are y = a (p(t) + g p(t + tau)) + r + w: p is the filtered burst
// (burst_shape.h), a the unknown amplitude and phase of the direct sound, g and tau those of one reflection within a
// millisecond, which is there or not; w is white noise behind the low-pass, r the reverberation: a Gaussian process
// whose power begins at the onset t and decays, with an unknown density P. So y is Gaussian with the covariance G + P
// R(t); with a left free, the likelihood of (t, P, g, tau) is exp(-|y|^2 + |<s, y>|^2 / <s, s>) / (det <s, s>),
// products and norms taken with the inverse covariance, s = p(t) + g p(t + tau). (Generalised least squares; C. E.
// Rasmussen and C. K. I. Williams, "Gaussian Processes for Machine Learning", 2006, section 2.7, for coefficients
// without prior.)
#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

#include "testsound/sound_design.h"

namespace orvex::fine {

struct Onset {
  double s = 0.0;           // mean over its distribution, from the place that Offsets() count from
  double deviationS = 0.0;  // of that distribution
  double amplitude = 0.0;   // of the direct sound, in the unit of the values
  double reflection = 0.0;  // probability of a reflection within a millisecond
};

class OnsetModel {
public:
  // Computes its covariances: about 0.1 s of work, and 25 MB. Afterwards threads may share it.
  explicit OnsetModel(const tools::SoundDesign& sound);
  ~OnsetModel();
  OnsetModel(const OnsetModel&) = delete;
  OnsetModel& operator=(const OnsetModel&) = delete;

  // The positions of the values, in samples from a place near the onset: the onset is looked for up to 1.2 ms to both
  // sides.
  const std::vector<std::int64_t>& Offsets() const;

  // One value for each of Offsets(), scaled so that the noise behind the low-pass has a power of 1. Of a recording that
  // ends, the first `usable` are meant, at least 1.
  Onset Fit(const std::vector<std::complex<double>>& values, std::size_t usable) const;

private:
  class Tables;
  std::unique_ptr<const Tables> m_Tables;
};

}  // namespace orvex::fine
