// Blocks of several frequencies for the receiver, and how strong the four frequencies are in a block.
#pragma once

#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "support/voice_blocks.h"

namespace orvex::test {

// Time of `buffers` buffers in seconds.
inline double BufferSeconds(int buffers) {
  return buffers * kVoiceBlockSamples / kVoiceRateHz;
}

// Cosines through the whole block, by amplitude, and a first sample that raises every frequency alike.
struct ToneMix {
  double amplitude17000 = 0.0;
  double amplitude17500 = 0.0;
  double amplitude18000 = 0.0;
  double amplitude19000 = 0.0;
  double click = 0.0;
  double phase = 0.0;  // of the cosines, radians
};

inline Samples Block(const ToneMix& sound) {
  const double turn = 2.0 * std::acos(-1.0) / kVoiceRateHz;
  Samples samples;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    const auto cosine = [&](int hz) { return std::cos(turn * hz * n + sound.phase); };
    const double value = sound.amplitude17000 * cosine(17000) + sound.amplitude17500 * cosine(17500) +
                         sound.amplitude18000 * cosine(18000) + sound.amplitude19000 * cosine(19000) +
                         (n == 0 ? sound.click : 0.0);
    samples.push_back(static_cast<std::int16_t>(std::lround(value)));
  }
  return samples;
}

// A 17 kHz tone with some 19 kHz in it, and the other way round. A magnitude is about 384 times the amplitude.
inline Samples Tone17(double amplitude, double amplitude19000 = 0.0) {
  return Block({amplitude, 0.0, 0.0, amplitude19000, 0.0, 0.0});
}
inline Samples Tone19(double amplitude, double amplitude17000 = 0.0) {
  return Block({amplitude17000, 0.0, 0.0, amplitude, 0.0, 0.0});
}

inline Samples Times(int factor, Samples samples) {
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(sample * factor);
  }
  return samples;
}

inline std::vector<std::uint8_t> LittleEndian(const Samples& samples) {
  std::vector<std::uint8_t> bytes;
  for (const std::int16_t sample : samples) {
    const int bits = sample < 0 ? sample + 65536 : sample;
    bytes.push_back(static_cast<std::uint8_t>(bits % 256));
    bytes.push_back(static_cast<std::uint8_t>(bits / 256));
  }
  return bytes;
}

// Magnitudes of one block.
struct Levels {
  long double at17000 = 0.0L;
  long double at17500 = 0.0L;
  long double at18000 = 0.0L;
  long double at19000 = 0.0L;

  long double Neighbours() const { return (at17500 + at18000) / 2; }
  long double Ratio17() const { return at17000 / Neighbours(); }
  long double Ratio19() const { return at19000 / Neighbours(); }
};

// One frequency, from a table of a whole second of phases, so that no phase is rounded.
inline long double LevelAt(int hz, const Samples& samples) {
  constexpr auto kSecond = static_cast<int>(kVoiceRateHz);
  static const std::vector<std::pair<long double, long double>> kCircle = [] {
    std::vector<std::pair<long double, long double>> circle;
    for (int k = 0; k < kSecond; ++k) {
      const long double angle = 2.0L * std::acos(-1.0L) * k / kSecond;
      circle.emplace_back(std::cos(angle), std::sin(angle));
    }
    return circle;
  }();
  long double re = 0.0L;
  long double im = 0.0L;
  for (int n = 0; n < kVoiceBlockSamples && n < static_cast<int>(samples.size()); ++n) {
    const auto& [cosine, sine] = kCircle[static_cast<std::size_t>(hz * n % kSecond)];
    re += samples[static_cast<std::size_t>(n)] * cosine;
    im += samples[static_cast<std::size_t>(n)] * sine;
  }
  return std::hypot(re, im);
}

inline Levels LevelsOf(const Samples& samples) {
  return {LevelAt(17000, samples), LevelAt(17500, samples), LevelAt(18000, samples), LevelAt(19000, samples)};
}

// A text as printf writes it.
[[gnu::format(printf, 1, 2)]] inline std::string Text(const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace orvex::test
