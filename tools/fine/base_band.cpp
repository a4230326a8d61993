// The filter is moved to the tone instead of the recording to 0 Hz: then only the values that are asked for are
// computed.
#include "fine/base_band.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "testsound/sound_design.h"

namespace orvex::fine {
namespace {

constexpr double kTurn = 2.0 * tools::kPi;

std::vector<double> MakeLowPass() {
  std::vector<double> taps;
  for (int n = 0; n < kFilterTaps; ++n) {
    const double angle = kTurn * n / (kFilterTaps - 1);
    taps.push_back(0.35875 - 0.48829 * std::cos(angle) + 0.14128 * std::cos(2.0 * angle) -
                   0.01168 * std::cos(3.0 * angle));
  }
  const double sum = std::accumulate(taps.begin(), taps.end(), 0.0);
  for (double& tap : taps) {
    tap /= sum;
  }
  return taps;
}

}  // namespace

const std::vector<double>& LowPass() {
  static const std::vector<double> taps = MakeLowPass();
  return taps;
}

double FilteredNoisePower() {
  const std::vector<double>& taps = LowPass();
  return std::inner_product(taps.begin(), taps.end(), taps.begin(), 0.0);
}

BaseBand::BaseBand(double toneHz) : m_CyclesPerSample(toneHz / kVoiceRateHz) {
  const std::vector<double>& taps = LowPass();
  for (int n = 0; n < kFilterTaps; ++n) {
    const double angle = -kTurn * m_CyclesPerSample * (n - kFilterHalf);
    m_Real.push_back(taps[static_cast<std::size_t>(n)] * std::cos(angle));
    m_Imaginary.push_back(taps[static_cast<std::size_t>(n)] * std::sin(angle));
  }
}

std::vector<std::complex<double>> BaseBand::Values(const Samples& samples, std::int64_t first, std::size_t count,
                                                   std::int64_t step) const {
  std::vector<std::complex<double>> values(count);
  const auto end = static_cast<std::int64_t>(samples.count);
  for (std::size_t n = 0; n < count; ++n) {
    const std::int64_t position = first + static_cast<std::int64_t>(n) * step;
    const std::int64_t begin = position - kFilterHalf;
    const std::int64_t from = std::max<std::int64_t>(0, -begin);
    const std::int64_t to = std::min<std::int64_t>(kFilterTaps, end - begin);
    double real = 0.0;
    double imaginary = 0.0;
    for (std::int64_t tap = from; tap < to; ++tap) {
      const double sample = samples.data[begin + tap];
      real += m_Real[static_cast<std::size_t>(tap)] * sample;
      imaginary += m_Imaginary[static_cast<std::size_t>(tap)] * sample;
    }
    const double cycles = m_CyclesPerSample * static_cast<double>(position);
    values[n] = std::complex<double>(real, imaginary) * std::polar(1.0, -kTurn * (cycles - std::floor(cycles)));
  }
  return values;
}

}  // namespace orvex::fine
