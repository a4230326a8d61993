// Compares the samples that have come with the time that has passed.
#include "pipewire/client/loss_meter.h"

#include <cmath>

namespace orvex::pipewire {
namespace {

// Less than the shortest cycle, 32 frames of 48000 Hz, and more than the sample by which a resampler's cycles differ.
constexpr double kToleratedSamples = 16.0;

}  // namespace

LossMeter::Judgement LossMeter::Judge(const Cycle& cycle, std::size_t count) {
  // A process that wakes up late in a cycle gets the samples of the cycle before, and then those of this one, with the
  // same time for both. So the first samples after a loss are counted as lost, and their followers are left out.
  if (m_Begin.rateHz != 0.0 && cycle.beginNs == m_LastNs) {
    return {0, false};
  }
  m_LastNs = cycle.beginNs;
  const double passed = static_cast<double>(cycle.position - m_Begin.position) * m_SampleRateHz / cycle.rateHz;
  const double missing = std::round(passed - m_Samples);
  const bool isOtherClock =
      cycle.rateHz != m_Begin.rateHz || cycle.position < m_Begin.position || missing < -kToleratedSamples;
  if (isOtherClock) {
    m_Begin = cycle;
    m_Samples = static_cast<double>(count);
    return {0, true};
  }
  const bool isLoss = missing > kToleratedSamples;
  const double lost = isLoss ? missing + static_cast<double>(count) : 0.0;
  m_Samples += isLoss ? lost : static_cast<double>(count);
  return {static_cast<std::uint64_t>(lost), !isLoss};
}

}  // namespace orvex::pipewire
