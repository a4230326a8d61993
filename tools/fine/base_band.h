// One tone of a recording alone: mixed down to 0 Hz, and what lies further than 1.6 kHz from it taken away by 92 dB,
// the other tone's ramps among it.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvex/platform/remote_voice.h"

namespace orvex::fine {

// A recording's samples at kVoiceRateHz, not owned.
struct Samples {
  const std::int16_t* data = nullptr;
  std::size_t count = 0;
};

constexpr int kFilterTaps = 117;  // 2.5 ms
constexpr int kFilterHalf = kFilterTaps / 2;

// The Blackman-Harris window of kFilterTaps points, divided by its sum (F. J. Harris, "On the use of windows for
// harmonic analysis with the discrete Fourier transform", Proc. IEEE 66, 1978: four terms, -92 dB). A shorter one lets
// the other tone through where bursts overlap.
const std::vector<double>& LowPass();

// White noise of power 1 per sample has this power behind mixer and low-pass.
double FilteredNoisePower();

// A tone of amplitude A becomes a complex constant of magnitude A / 2. Pure; threads may share one object.
class BaseBand {
public:
  explicit BaseBand(double toneHz);

  // Value at each of `count` positions from `first` on, `step` samples apart. The phase is that of the sample at index
  // 0, so that values of different calls belong together. What lies outside the recording counts as 0.
  std::vector<std::complex<double>> Values(const Samples& samples, std::int64_t first, std::size_t count,
                                           std::int64_t step) const;

private:
  const double m_CyclesPerSample;
  std::vector<double> m_Real;  // taps of the low-pass, moved to the tone
  std::vector<double> m_Imaginary;
};

}  // namespace orvex::fine
