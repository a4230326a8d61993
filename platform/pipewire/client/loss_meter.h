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

  // A cycle of the graph.
  struct Cycle {
    std::int64_t beginNs;
    std::uint64_t position;  // of the graph's clock, in periods of rateHz
    double rateHz;
  };
  struct Judgement {
    std::uint64_t lost;  // so many samples are missing, those of this cycle included when they are not kept
    bool isKept;         // the samples of this cycle are what they seem to be
  };
  // `count` samples have come in this cycle.
  Judgement Judge(const Cycle& cycle, std::size_t count);

private:
  double m_SampleRateHz;
  Cycle m_Begin{0, 0, 0.0};  // of the count; rateHz 0: nothing has come yet
  std::int64_t m_LastNs = 0;
  double m_Samples = 0.0;  // since m_Begin, lost ones included
};

}  // namespace orvex::pipewire
