// The arithmetic of one block. Its order of operations is fixed, so that results are the same on every machine.
#include "Application/OrvexDetector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace orvex::detector {
namespace {

constexpr double kTwoPi = 6.283185307179586;

}  // namespace

Block ReadSamples(const VoiceData& record) {
  Block samples{};
  const std::size_t count = std::min<std::size_t>(samples.size(), record.byteCount / 2U);
  for (std::size_t n = 0; n < count; ++n) {
    const unsigned int bits = record.bytes[2 * n] | static_cast<unsigned int>(record.bytes[2 * n + 1]) << 8U;
    samples[n] = static_cast<std::int16_t>(bits);
  }
  return samples;
}

// The sine and cosine are computed for every sample, as the thresholds were found with them.
double MagnitudeAt(double frequencyHz, const Block& samples) {
  // In a loop of their own the divisions overlap; between the sines they would take a fifth of the time.
  std::array<double, kVoiceBlockSamples> angles;
  std::int32_t sample = 0;
  for (double& angle : angles) {
    angle = sample++ * kTwoPi * frequencyHz / kVoiceRateHz;
  }
  double re = 0.0;
  double im = 0.0;
  for (std::size_t n = 0; n < samples.size(); ++n) {
    double sine = 0.0;
    double cosine = 0.0;
    sincos(angles[n], &sine, &cosine);
    re += samples[n] * cosine;
    im += samples[n] * sine;
  }
  return std::sqrt(re * re + im * im);
}

ToneMagnitudes MeasureBlock(const Block& samples) {
  ToneMagnitudes tones;
  tones.at17000 = MagnitudeAt(17000.0, samples);
  tones.at17500 = MagnitudeAt(17500.0, samples);
  tones.at18000 = MagnitudeAt(18000.0, samples);
  tones.at19000 = MagnitudeAt(19000.0, samples);
  const double neighbours = (tones.at17500 + tones.at18000) * 0.5;
  tones.ratio17 = tones.at17000 / neighbours;
  tones.ratio19 = tones.at19000 / neighbours;
  return tones;
}

double SecondsOf(std::int32_t buffers) {
  return buffers * kVoiceBlockSamples / kVoiceRateHz;
}

}  // namespace orvex::detector
