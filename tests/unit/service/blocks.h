// Blocks of microphone samples for the tests: silence with a little noise, or a tone.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace orvex::test {

constexpr std::size_t kBlockSamples = 768;

// A full block of one frequency in Hz at the receiver's rate.
inline std::vector<std::int16_t> Tone(double frequencyHz, double amplitude) {
  std::vector<std::int16_t> samples;
  for (std::size_t n = 0; n < kBlockSamples; ++n) {
    const double angle = 2.0 * M_PI * frequencyHz * static_cast<double>(n) / 46545.0;
    samples.push_back(static_cast<std::int16_t>(std::lround(amplitude * std::cos(angle))));
  }
  return samples;
}

// A quiet room: the same faint click in every block, which has some level at every frequency.
inline std::vector<std::int16_t> Ambient() {
  std::vector<std::int16_t> samples(kBlockSamples, 0);
  samples[0] = 100;
  return samples;
}

}  // namespace orvex::test
