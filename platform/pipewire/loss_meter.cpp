// Compares the samples that have come with the time that has passed.
#include "pipewire/loss_meter.h"

#include <cmath>

namespace orvex::pipewire {
namespace {

// Less than the shortest cycle, 32 frames of 48000 Hz, and more than the sample by which a resampler's cycles differ.
constexpr double kToleratedSamples = 16.0;

}  // namespace

std::uint64_t LossMeter::Missing(std::uint64_t position, double rateHz, std::size_t count) {
  if (position < m_Begin || rateHz != m_RateHz) {
    Begin(position, rateHz);
  }
  const double passed = static_cast<double>(position - m_Begin) * m_SampleRateHz / m_RateHz;
  const double missing = std::round(passed - m_Samples);
  if (missing < -kToleratedSamples) {
    Begin(position, rateHz);  // another clock leads the graph
  }
  const bool isLoss = missing > kToleratedSamples;
  m_Samples += static_cast<double>(count) + (isLoss ? missing : 0.0);
  return isLoss ? static_cast<std::uint64_t>(missing) : 0;
}

void LossMeter::Begin(std::uint64_t position, double rateHz) {
  m_Begin = position;
  m_RateHz = rateHz;
  m_Samples = 0.0;
}

}  // namespace orvex::pipewire
