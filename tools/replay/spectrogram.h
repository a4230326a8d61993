// The levels of a recording over time and frequency, around the two tones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "replay/chart.h"

namespace orvex::tools {

constexpr double kSpectrogramStepKhz = 0.1;
constexpr Span kSpectrogramKhz = {15.0, 21.0};  // of the lowest and the highest row
constexpr std::size_t kSpectrogramRows = 61;

struct Spectrogram {
  std::size_t columns = 0;
  std::vector<float> dbfs;  // row by row, the highest frequency first; 0 dBFS is a sine at full scale

  float At(std::size_t row, std::size_t column) const { return dbfs[row * columns + column]; }
};

// `buffers`: what the columns share out among them; parts of a buffer count. A column has the highest level of its
// time. What lies outside the recording shows its end.
Spectrogram MakeSpectrogram(const std::vector<std::int16_t>& samples, Span buffers, std::size_t columns);

}  // namespace orvex::tools
