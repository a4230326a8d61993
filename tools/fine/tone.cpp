// Pairs, and the remote's rate, from the places and the turning of the bursts.
#include "fine/tone.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <complex>

namespace orvex::fine {
namespace {

// Pairs agree when they are this close to one another, in samples; a lost block is 768.
constexpr double kAgreement = 40.0;
// Tones further apart, in samples, may be of different pairs when one of the bursts is missing.
constexpr double kFurthest = tools::kPairingSpanMs * 1e-3 * kVoiceRateHz + 100.0;

// Whether it is smaller than one of the distances by whole blocks.
bool HasLostBlocks(double distance, const std::vector<double>& distances) {
  return std::any_of(distances.begin(), distances.end(), [&](double other) {
    const double missing = std::abs(other) - std::abs(distance);
    const double blocks = std::round(missing / static_cast<double>(kVoiceBlockSamples));
    return other * distance > 0.0 && blocks > 0.0 &&
           std::abs(missing - blocks * static_cast<double>(kVoiceBlockSamples)) < kAgreement;
  });
}

// Where a burst that begins at `onset` neither rises nor falls, as far as the recording goes.
Span PlateauFrom(const Samples& samples, double onset, const tools::SoundDesign& sound) {
  constexpr double kMarginMs = 0.5;
  const auto at = [&](double ms) { return static_cast<std::int64_t>(onset + ms * 1e-3 * kVoiceRateHz); };
  const auto end = static_cast<std::int64_t>(samples.count) - kFilterHalf;
  return {std::max<std::int64_t>(0, at(sound.rampMs + kMarginMs)),
          std::min(end, at(sound.burstMs - sound.rampMs - kMarginMs))};
}

}  // namespace

std::string Tone::Name() const {
  return fmt::format("{:.0f} kHz", hz * 1e-3);
}

const AlignedBurst* Tone::Burst(std::size_t pair) const {
  const auto burst = std::find_if(aligned.bursts.begin(), aligned.bursts.end(),
                                  [&](const AlignedBurst& one) { return one.pair == pair; });
  return burst != aligned.bursts.end() ? &*burst : nullptr;
}

std::vector<std::size_t> AgreeingPairs(const std::array<Tone, 2>& tones, int pairs) {
  std::vector<std::size_t> both;
  std::vector<double> distances;
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(pairs); ++pair) {
    const AlignedBurst* const first = tones[0].Burst(pair);
    const AlignedBurst* const second = tones[1].Burst(pair);
    if (first != nullptr && second != nullptr) {
      both.push_back(pair);
      distances.push_back(second->position - first->position);
    }
  }
  const bool isComplete = both.size() == static_cast<std::size_t>(pairs);
  std::vector<std::size_t> largest;
  for (const double distance : distances) {
    if (HasLostBlocks(distance, distances) || (!isComplete && std::abs(distance) > kFurthest)) {
      continue;
    }
    std::vector<std::size_t> group;
    for (std::size_t n = 0; n < both.size(); ++n) {
      if (std::abs(distances[n] - distance) < kAgreement) {
        group.push_back(both[n]);
      }
    }
    if (group.size() > largest.size()) {
      largest = group;
    }
  }
  return largest;
}

std::optional<double> RateError(const std::array<Tone, 2>& tones, const tools::SoundDesign& sound) {
  const double spacing = sound.spacingMs * 1e-3 * kVoiceRateHz;
  const double block = static_cast<double>(kVoiceBlockSamples);
  double products = 0.0;
  double squares = 0.0;
  for (const Tone& tone : tones) {
    const std::vector<AlignedBurst>& bursts = tone.aligned.bursts;
    std::vector<double> expected;
    std::vector<double> measured;
    for (const AlignedBurst& burst : bursts) {
      expected.push_back(static_cast<double>(burst.pair) * spacing);
      const double missing = expected.back() - expected.front() - (burst.position - bursts.front().position);
      measured.push_back(burst.position + block * std::round(missing / block));
    }
    double expectedMean = 0.0;
    double measuredMean = 0.0;
    for (std::size_t n = 0; n < expected.size(); ++n) {
      expectedMean += expected[n] / static_cast<double>(expected.size());
      measuredMean += measured[n] / static_cast<double>(expected.size());
    }
    for (std::size_t n = 0; n < expected.size(); ++n) {
      products += (expected[n] - expectedMean) * (measured[n] - measuredMean);
      squares += (expected[n] - expectedMean) * (expected[n] - expectedMean);
    }
  }
  return squares > 0.0 ? std::optional<double>(products / squares - 1.0) : std::nullopt;
}

Span PlateauOf(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound) {
  return PlateauFrom(samples, tone.aligned.onset, sound);
}

std::optional<double> Steadiness(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound) {
  constexpr std::size_t kDistance = kFilterTaps;
  std::complex<double> product = 0.0;
  double earlier = 0.0;
  double later = 0.0;
  for (const AlignedBurst& burst : tone.aligned.bursts) {
    const Span plateau = PlateauFrom(samples, burst.position, sound);
    const auto count = static_cast<std::size_t>(std::max<std::int64_t>(0, plateau.end - plateau.begin));
    if (count < 2 * kDistance) {
      continue;
    }
    const auto values = tone.band->Values(samples, plateau.begin, count, 1);
    for (std::size_t n = kDistance; n < count; ++n) {
      product += std::conj(values[n - kDistance]) * values[n];
      earlier += std::norm(values[n - kDistance]);
      later += std::norm(values[n]);
    }
  }
  const double energy = std::max(earlier, later);
  return energy > 0.0 ? std::optional<double>(std::abs(product) / energy) : std::nullopt;
}

double FrequencyError(const Samples& samples, const Tone& tone, const Span& span, std::size_t distance) {
  if (span.end - span.begin <= static_cast<std::int64_t>(distance)) {
    return 0.0;
  }
  const auto values = tone.band->Values(samples, span.begin, static_cast<std::size_t>(span.end - span.begin), 1);
  std::complex<double> turn = 0.0;
  for (std::size_t n = 0; n + distance < values.size(); ++n) {
    turn += std::conj(values[n]) * values[n + distance];
  }
  return std::arg(turn) / (2.0 * tools::kPi * static_cast<double>(distance)) * kVoiceRateHz / tone.hz;
}

double RateErrorOfOne(const Samples& samples, const Tone& tone, const tools::SoundDesign& sound) {
  const Span plateau = PlateauOf(samples, tone, sound);
  const std::int64_t third = (plateau.end - plateau.begin) / 3;
  if (third < 20) {
    return 0.0;
  }
  const double error = -FrequencyError(samples, tone, plateau, static_cast<std::size_t>(third));
  return std::abs(error) < kLargestRateError ? error : 0.0;
}

}  // namespace orvex::fine
