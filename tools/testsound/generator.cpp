// Refuses a design that cannot be made, then writes one burst per channel into every pair's place.
#include "testsound/generator.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <stdexcept>

namespace orvex::tools {
namespace {

constexpr double kLongestMs = 60000.0;

std::size_t ToFrames(double ms) {
  return static_cast<std::size_t>(std::llround(ms * kSoundRateHz / 1000.0));
}

void Require(bool kept, const char* name, double value, const char* expected) {
  if (kept) {
    return;
  }
  std::ostringstream text;
  text << name << ' ' << value << ", expected " << expected;
  throw std::invalid_argument(text.str());
}

// Comparisons are written so that NaN fails them.
void RequireMakeable(const SoundDesign& design) {
  Require(design.leadInMs >= 0.0, "lead-in", design.leadInMs, "0 ms or more");
  Require(design.tailMs >= 0.0, "tail", design.tailMs, "0 ms or more");
  Require(design.burstMs > 0.0, "burst", design.burstMs, "more than 0 ms");
  Require(design.pairs >= 1, "pairs", design.pairs, "1 or more");
  Require(design.rampMs >= 0.0 && 2.0 * design.rampMs <= design.burstMs, "ramp", design.rampMs,
          "0 ms to half of the burst");
  Require(design.skewMs >= 0.0, "skew", design.skewMs, "0 ms or more");
  Require(design.spacingMs >= design.burstMs, "spacing", design.spacingMs, "no less than the burst");
  Require(design.levelDbfs <= 0.0, "level", design.levelDbfs, "0 dBFS or less");
  Require(design.DurationMs() <= kLongestMs, "duration", design.DurationMs(), "60000 ms or less");
}

// The burst's gain at frame `n` of `frames`: raised-cosine ramps around a level part.
double Envelope(std::size_t n, std::size_t frames, std::size_t rampFrames) {
  const std::size_t fromEdge = std::min(n, frames - n);
  if (fromEdge >= rampFrames) {
    return 1.0;
  }
  return 0.5 - 0.5 * std::cos(kPi * static_cast<double>(fromEdge) / static_cast<double>(rampFrames));
}

std::vector<std::int16_t> MakeBurst(const SoundDesign& design, double toneHz) {
  // Rounded down, so that no sample exceeds the level.
  const double amplitude = std::min(std::floor(kFullScale * std::pow(10.0, design.levelDbfs / 20.0)), 32767.0);
  const std::size_t rampFrames = ToFrames(design.rampMs);
  std::vector<std::int16_t> burst(ToFrames(design.burstMs));
  for (std::size_t n = 0; n < burst.size(); ++n) {
    const double phase = 2.0 * kPi * toneHz * static_cast<double>(n) / kSoundRateHz;
    const double value = amplitude * Envelope(n, burst.size(), rampFrames) * std::sin(phase);
    burst[n] = static_cast<std::int16_t>(std::lround(value));
  }
  return burst;
}

}  // namespace

std::vector<std::int16_t> GenerateSound(const SoundDesign& design) {
  RequireMakeable(design);
  const std::vector<std::int16_t> left = MakeBurst(design, kLeftToneHz);
  const std::vector<std::int16_t> right = MakeBurst(design, kRightToneHz);
  const std::size_t lastStart = ToFrames(design.leadInMs + (design.pairs - 1) * design.spacingMs);
  const std::size_t skew = ToFrames(design.skewMs);
  std::vector<std::int16_t> samples(2 * (lastStart + skew + right.size() + ToFrames(design.tailMs)), 0);
  for (int pair = 0; pair < design.pairs; ++pair) {
    const std::size_t start = ToFrames(design.leadInMs + pair * design.spacingMs);
    for (std::size_t n = 0; n < left.size(); ++n) {
      samples[2 * (start + n)] = left[n];
      samples[2 * (start + skew + n) + 1] = right[n];
    }
  }
  return samples;
}

}  // namespace orvex::tools
