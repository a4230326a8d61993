// Converts sound from one sampling rate to another, by libsamplerate.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <samplerate.h>

namespace orvex::sim {

class RateConverter {
public:
  explicit RateConverter(double ratio);  // output rate over input rate

  // How far the filter reaches to each side, in input samples.
  std::size_t GetReach() const { return m_Reach; }
  // Converts a piece of sound as if silence lay before and after it; output 0 lies at the time of input 0. The result
  // is valid until the next call.
  const std::vector<float>& Convert(const std::vector<float>& input);

private:
  struct Delete {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };

  double m_Ratio;
  std::size_t m_Reach;
  std::unique_ptr<SRC_STATE, Delete> m_State;
  std::vector<float> m_Output;
};

// Converts a whole recording.
std::vector<float> ConvertRate(const std::vector<float>& input, double ratio);

}  // namespace orvex::sim
