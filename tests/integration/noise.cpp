// Makes sounds; measures one frequency of a block by definition.
#include "integration/noise.h"

#include <cmath>
#include <complex>
#include <cstdint>

#include "orvex/platform/remote_voice.h"
#include "testsound/wave_file.h"

namespace orvex::integration {
namespace {

constexpr int kSoundRateHz = 48000;
constexpr double kTwoPi = 6.283185307179586;

std::int16_t SampleAt(const std::string& dump, std::size_t sample) {
  const auto low = static_cast<std::uint8_t>(dump.at(2 * sample));
  const auto high = static_cast<std::uint8_t>(dump.at(2 * sample + 1));
  return static_cast<std::int16_t>(low | high << 8);
}

}  // namespace

void WriteNoise(const std::string& path, const std::vector<double>& tonesHz, double silenceS, double tonesS) {
  constexpr double kQuarter = 8192.0;
  std::vector<std::int16_t> samples(2 * static_cast<std::size_t>(silenceS * kSoundRateHz), 0);
  for (int n = 0; n < static_cast<int>(tonesS * kSoundRateHz); ++n) {
    double sum = 0.0;
    for (const double tone : tonesHz) {
      sum += kQuarter * std::sin(kTwoPi * tone * n / kSoundRateHz);
    }
    samples.insert(samples.end(), 2, static_cast<std::int16_t>(sum));
  }
  tools::WriteWaveFile(tools::OutputFile(path), samples);
}

double MagnitudeInDump(const std::string& dump, std::size_t block, double frequencyHz) {
  std::complex<double> sum;
  for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
    const double angle = static_cast<double>(n) * kTwoPi * frequencyHz / kVoiceRateHz;
    sum += static_cast<double>(SampleAt(dump, block * kVoiceBlockSamples + n)) * std::polar(1.0, angle);
  }
  return std::abs(sum);
}

}  // namespace orvex::integration
