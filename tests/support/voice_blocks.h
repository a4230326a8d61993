// Blocks of microphone samples: clicks, which have the same level at every frequency, and tones.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "orvex/platform/remote_voice.h"

namespace orvex::test {

using Samples = std::vector<std::int16_t>;

// Silence but for the first sample: exactly `level` at every frequency.
inline Samples Click(std::int16_t level) {
  Samples samples(kVoiceBlockSamples, 0);
  samples[0] = level;
  return samples;
}

// A quiet room.
inline Samples Ambient() {
  return Click(100);
}

// A whole block of one frequency. The magnitude of that frequency is about 384 times the amplitude.
inline Samples Tone(double frequencyHz, double amplitude) {
  Samples samples;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    const double angle = 2.0 * M_PI * frequencyHz * n / kVoiceRateHz;
    samples.push_back(static_cast<std::int16_t>(std::lround(amplitude * std::cos(angle))));
  }
  return samples;
}

// A tone of 19 kHz that does not stand out from its neighbour at 18 kHz.
inline Samples NoisyTone19(double amplitude) {
  Samples samples = Tone(19000, amplitude);
  const Samples beside = Tone(18000, amplitude * 0.9);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::int16_t>(samples[i] + beside[i]);
  }
  return samples;
}

}  // namespace orvex::test
