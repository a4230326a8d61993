// Each spectrum is that of one block's length of sound under a Hann window, which keeps a burst from spreading over all
// frequencies. At least every half block one is taken, so that the windows leave nothing out.
#include "replay/spectrogram.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>

#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

constexpr double kStepBuffers = 0.5;
constexpr float kLowestDbfs = -200.0F;  // of digital silence

// One row for the cosine of each frequency, and then one for the sine of each. A sine at full scale gives 1.
Eigen::MatrixXf MakeBasis() {
  Eigen::MatrixXf basis(2 * kSpectrogramRows, kVoiceBlockSamples);
  const double windowSum = kVoiceBlockSamples / 2.0;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    const double window = 0.5 - 0.5 * std::cos(2.0 * kPi * (n + 0.5) / kVoiceBlockSamples);
    for (std::size_t row = 0; row < kSpectrogramRows; ++row) {
      const double hertz = 1e3 * (kSpectrogramKhz.high - static_cast<double>(row) * kSpectrogramStepKhz);
      const double phase = 2.0 * kPi * hertz * n / kVoiceRateHz;
      const double scale = window * 2.0 / windowSum / kFullScale;
      const auto index = static_cast<Eigen::Index>(row);
      basis(index, n) = static_cast<float>(scale * std::cos(phase));
      basis(index + static_cast<Eigen::Index>(kSpectrogramRows), n) = static_cast<float>(scale * std::sin(phase));
    }
  }
  return basis;
}

// The block around a place, moved to where it lies within the recording: half of one would end in a click.
Eigen::VectorXf TakeBlock(const std::vector<std::int16_t>& samples, double middleBuffer) {
  const auto end = static_cast<std::ptrdiff_t>(samples.size());
  const auto begin = std::clamp<std::ptrdiff_t>(std::lround((middleBuffer - 0.5) * kVoiceBlockSamples), 0,
                                                std::max<std::ptrdiff_t>(0, end - kVoiceBlockSamples));
  const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kVoiceBlockSamples, end - begin);
  Eigen::VectorXf block = Eigen::VectorXf::Zero(kVoiceBlockSamples);
  std::copy_n(samples.begin() + begin, count, block.begin());
  return block;
}

}  // namespace

Spectrogram MakeSpectrogram(const std::vector<std::int16_t>& samples, Span buffers, std::size_t columns) {
  static const Eigen::MatrixXf basis = MakeBasis();
  constexpr auto kRows = static_cast<Eigen::Index>(kSpectrogramRows);
  Spectrogram made{columns, std::vector<float>(kSpectrogramRows * columns)};
  const double width = buffers.Length() / static_cast<double>(columns);
  const int spectra = std::max(1, static_cast<int>(std::ceil(width / kStepBuffers)));
  for (std::size_t column = 0; column < columns; ++column) {
    Eigen::ArrayXf power = Eigen::ArrayXf::Zero(kRows);
    for (int n = 0; n < spectra; ++n) {
      const double middle = buffers.low + width * (static_cast<double>(column) + (n + 0.5) / spectra);
      const Eigen::ArrayXf parts = (basis * TakeBlock(samples, middle)).array().square();
      power = power.max(parts.head(kRows) + parts.tail(kRows));
    }
    for (std::size_t row = 0; row < kSpectrogramRows; ++row) {
      const float level = 10.0F * std::log10(power(static_cast<Eigen::Index>(row)));
      made.dbfs[row * columns + column] = std::max(level, kLowestDbfs);
    }
  }
  return made;
}

}  // namespace orvex::tools
