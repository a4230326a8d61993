// A table of the filtered rise.
#include "fine/burst_shape.h"

#include <algorithm>
#include <cmath>

#include "fine/base_band.h"

namespace orvex::fine {
namespace {

constexpr double kStepS = 2e-6;
// The filter is symmetric: half of it looks ahead.
constexpr double kBeginS = -static_cast<double>(kFilterHalf + 1) / kVoiceRateHz;

double Rise(double share) {
  const double sine = std::sin(tools::kPi / 2.0 * std::clamp(share, 0.0, 1.0));
  return sine * sine;
}

}  // namespace

double BurstEnvelope(double s, const tools::SoundDesign& sound) {
  const double endS = sound.burstMs * 1e-3;
  const double rampS = sound.rampMs * 1e-3;
  return s <= 0.0 || s >= endS ? 0.0 : Rise(s / rampS) * Rise((endS - s) / rampS);
}

FilteredBurst::FilteredBurst(const tools::SoundDesign& sound) {
  const std::vector<double>& filter = LowPass();
  const double endS = sound.rampMs * 1e-3 - kBeginS;
  for (double s = kBeginS; s < endS; s += kStepS) {
    double sum = 0.0;
    for (std::size_t n = 0; n < filter.size(); ++n) {
      const double offset = (static_cast<double>(n) - kFilterHalf) / kVoiceRateHz;
      sum += filter[n] * Rise((s - offset) / (sound.rampMs * 1e-3));
    }
    m_Points.push_back(sum);
  }
}

double FilteredBurst::operator()(double s) const {
  const double place = (s - kBeginS) / kStepS;
  if (place <= 0.0) {
    return 0.0;
  }
  const auto index = static_cast<std::size_t>(place);
  if (index + 1 >= m_Points.size()) {
    return 1.0;
  }
  const double part = place - static_cast<double>(index);
  return m_Points[index] + part * (m_Points[index + 1] - m_Points[index]);
}

double FilteredBurst::TimeOf(double share) const {
  const auto reached = std::lower_bound(m_Points.begin(), m_Points.end(), share);
  return kBeginS + kStepS * static_cast<double>(reached - m_Points.begin());
}

}  // namespace orvex::fine
