// The sum of everything that arrives at the microphone, sample by sample, from a moving first sample on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvex::sim {

class MixLine {
public:
  // Forgets everything; the next sample to be taken is number 0.
  void Reset();
  // Adds `gain` times `samples` from sample number `index` on; what lies before the next sample to be taken is lost.
  void Add(std::int64_t index, const std::vector<float>& samples, float gain);
  // Takes the next `count` samples; silence where nothing was added.
  void Take(float* samples, std::size_t count);

private:
  void Discard(std::size_t count);

  std::int64_t m_Next = 0;  // number of the next sample to be taken
  std::size_t m_Begin = 0;  // its place in m_Samples
  std::vector<float> m_Samples;
};

}  // namespace orvex::sim
