// The medium quality is libsamplerate's cheapest whose filter leaves 19 kHz unchanged at the remote's rate.
#include "sim/src/rate_converter.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace orvex::sim {
namespace {

constexpr int kQuality = SRC_SINC_MEDIUM_QUALITY;
constexpr double kFilterReach = 46.0;  // of this quality, in samples of the lower rate

void CheckResult(int error) {
  if (error != 0) {
    throw std::runtime_error(std::string("rate conversion failed: ") + src_strerror(error));
  }
}

}  // namespace

RateConverter::RateConverter(double ratio)
    : m_Ratio(ratio), m_Reach(static_cast<std::size_t>(std::ceil(kFilterReach / std::min(1.0, ratio)))) {
  int error = 0;
  m_State.reset(src_new(kQuality, 1, &error));
  CheckResult(error);
}

const std::vector<float>& RateConverter::Convert(const std::vector<float>& input) {
  m_Output.resize(static_cast<std::size_t>(std::ceil(static_cast<double>(input.size()) * m_Ratio)) + 1);
  CheckResult(src_reset(m_State.get()));
  SRC_DATA data{};
  data.data_in = input.data();
  data.input_frames = static_cast<long>(input.size());
  data.data_out = m_Output.data();
  data.output_frames = static_cast<long>(m_Output.size());
  data.end_of_input = 1;
  data.src_ratio = m_Ratio;
  CheckResult(src_process(m_State.get(), &data));
  m_Output.resize(static_cast<std::size_t>(data.output_frames_gen));
  return m_Output;
}

std::vector<float> ConvertRate(const std::vector<float>& input, double ratio) {
  return RateConverter(ratio).Convert(input);
}

}  // namespace orvex::sim
