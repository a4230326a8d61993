// Finds out how many samples were lost, by the clock of PipeWire's graph.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex::pipewire {

// In each cycle of the graph the stream gets as many samples as the cycle lasts. Cycles that the process has missed are
// seen by the clock's next position.
class LossMeter {
public:
  explicit LossMeter(double sampleRateHz) : m_SampleRateHz(sampleRateHz) {}

  // `count` samples have come in the cycle that begins at `position`, a count of periods of `rateHz`. The number of
  // samples that are missing in front of them.
  std::uint64_t Missing(std::uint64_t position, double rateHz, std::size_t count);

private:
  void Begin(std::uint64_t position, double rateHz);

  double m_SampleRateHz;
  double m_RateHz = 0.0;  // 0: nothing has come yet
  std::uint64_t m_Begin = 0;
  double m_Samples = 0.0;  // since m_Begin, lost ones included
};

}  // namespace orvex::pipewire
