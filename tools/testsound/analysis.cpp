// Filters are windowed sinc functions; single frequencies are measured by Goertzel's recursion.
#include "testsound/analysis.h"

#include <algorithm>
#include <cmath>

#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

// Low-pass of 511 taps under a Blackman window: it goes from 0 to about -75 dB within 520 Hz.
constexpr std::size_t kFilterTaps = 511;
constexpr double kFilterEdgeHz = 5.5 * kSoundRateHz / kFilterTaps;

// A low-pass whose stop band begins at `stopHz`.
std::vector<double> LowPass(double stopHz) {
  const double cutoff = (stopHz - kFilterEdgeHz / 2.0) / kSoundRateHz;
  const double middle = (kFilterTaps - 1) / 2.0;
  std::vector<double> taps(kFilterTaps);
  for (std::size_t n = 0; n < kFilterTaps; ++n) {
    const double x = static_cast<double>(n) - middle;
    const double sinc = x == 0.0 ? 2.0 * cutoff : std::sin(2.0 * kPi * cutoff * x) / (kPi * x);
    const double angle = 2.0 * kPi * static_cast<double>(n) / (kFilterTaps - 1);
    taps[n] = sinc * (0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle));
  }
  return taps;
}

}  // namespace

double ToDb(double ratio) {
  return 20.0 * std::log10(ratio);
}

double Peak(const Channel& channel) {
  double peak = 0.0;
  for (const double value : channel) {
    peak = std::max(peak, std::abs(value));
  }
  return peak;
}

std::vector<Burst> FindBursts(const Channel& channel, double threshold, std::size_t gapFrames) {
  std::vector<Burst> bursts;
  for (std::size_t n = 0; n < channel.size(); ++n) {
    if (std::abs(channel[n]) <= threshold) {
      continue;
    }
    if (bursts.empty() || n - bursts.back().end >= gapFrames) {
      bursts.push_back({n, n});
    }
    bursts.back().end = n + 1;
  }
  return bursts;
}

// Goertzel's recursion: one multiplication per sample.
double ToneAmplitude(const Channel& channel, const Burst& burst, double frequencyHz) {
  const double turn = 2.0 * std::cos(2.0 * kPi * frequencyHz / kSoundRateHz);
  double last = 0.0;
  double beforeLast = 0.0;
  for (std::size_t n = burst.begin; n < burst.end; ++n) {
    const double next = channel[n] + turn * last - beforeLast;
    beforeLast = last;
    last = next;
  }
  const double power = last * last + beforeLast * beforeLast - turn * last * beforeLast;
  return 2.0 * std::sqrt(std::max(power, 0.0)) / static_cast<double>(burst.end - burst.begin);
}

double DominantFrequencyHz(const Channel& channel, const Burst& burst) {
  double bestHz = 0.0;
  double best = -1.0;
  for (int hz = 1000; hz < kSoundRateHz / 2; hz += 10) {
    const double amplitude = ToneAmplitude(channel, burst, hz);
    if (amplitude > best) {
      best = amplitude;
      bestHz = hz;
    }
  }
  return bestHz;
}

double PeakBelow(const Channel& channel, double frequencyHz) {
  const std::vector<double> taps = LowPass(frequencyHz);
  Channel rest(channel.size() + kFilterTaps - 1, 0.0);
  for (std::size_t n = 0; n < channel.size(); ++n) {
    if (channel[n] == 0.0) {
      continue;  // most of a test sound is silence
    }
    for (std::size_t k = 0; k < kFilterTaps; ++k) {
      rest[n + k] += channel[n] * taps[k];
    }
  }
  return Peak(rest);
}

}  // namespace orvex::tools
