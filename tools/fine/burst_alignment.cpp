// Every burst is correlated with every other; the one most like all others becomes the reference.
#include "fine/burst_alignment.h"

#include <algorithm>
#include <cmath>

namespace orvex::fine {
namespace {

constexpr double SamplesOf(double s) {
  return s * kVoiceRateHz;
}

// Where reverberation is strong, the loudest part of a burst is long after its onset.
constexpr auto kBefore = static_cast<std::int64_t>(SamplesOf(60e-3));
constexpr auto kWindow = static_cast<std::size_t>(SamplesOf(95e-3));
// What of a burst is compared, from its onset.
constexpr double kCompareFrom = -SamplesOf(4e-3);
constexpr double kCompareTo = SamplesOf(20e-3);
// Rough onsets are this far off at most.
constexpr std::int64_t kLargestLag = 93;  // 2 ms
// The rough onset is where the envelope crosses this share of its peak, but not less than so many deviations of the
// noise.
constexpr double kShare = 0.1;
constexpr double kDeviations = 5.0;
constexpr double kLargestShare = 0.6;
// So long a recording must have been going on by then: what sounds sooner may be the rest of a burst that began before
// it, whose reverberation swells and fades in about a burst's length.
constexpr auto kHeardBefore = static_cast<std::int64_t>(SamplesOf(20e-3));
// A burst is like the others when it correlates at least this share as well as they do, and lacks at most so many times
// what they lack of 1, or so much.
constexpr double kLikeness = 0.93;
constexpr double kLacking = 3.0;
constexpr double kLittleLacking = 2e-3;

struct Window {
  std::size_t pair = 0;
  std::int64_t begin = 0;
  std::vector<std::complex<double>> values;
  double onset = 0.0;  // from the beginning
  double peak = 0.0;

  bool IsWhole(std::int64_t usableEnd) const {
    return static_cast<double>(begin) + onset + kCompareTo <= static_cast<double>(usableEnd);
  }
};

// Where the envelope rises through the level that means a share of its peak, less what the filtered burst takes to that
// share.
bool FindRoughOnset(Window& window, const FilteredBurst& shape, double noisePower) {
  for (const std::complex<double>& value : window.values) {
    window.peak = std::max(window.peak, std::abs(value));
  }
  const double noise = kDeviations * std::sqrt(noisePower);
  if (window.peak < noise) {
    return false;
  }
  const double level = std::min(std::max(kShare * window.peak, noise), kLargestShare * window.peak);
  const auto over = std::find_if(window.values.begin(), window.values.end(),
                                 [&](const std::complex<double>& value) { return std::abs(value) > level; });
  if (over == window.values.begin() || over == window.values.end() ||
      window.begin + (over - window.values.begin()) < kHeardBefore) {
    return false;
  }
  const double above = std::abs(*over);
  const double below = std::abs(*(over - 1));
  const double crossing = static_cast<double>(over - window.values.begin()) - 1.0 + (level - below) / (above - below);
  window.onset = crossing - SamplesOf(shape.TimeOf(level / window.peak));
  return true;
}

struct Correlation {
  double lag = 0.0;  // of the other's position against the one's, beyond that of the windows' beginnings
  double size = 0.0;
  double phase = 0.0;
};

Correlation Correlate(const Window& one, const Window& other) {
  const auto from = std::max<std::int64_t>(0, std::llround(one.onset + kCompareFrom));
  const auto to =
      std::min<std::int64_t>(static_cast<std::int64_t>(one.values.size()), std::llround(one.onset + kCompareTo));
  const std::int64_t middle = std::llround(other.onset - one.onset);
  std::vector<std::complex<double>> products;
  std::vector<double> sizes;
  double oneEnergy = 0.0;
  for (std::int64_t n = from; n < to; ++n) {
    oneEnergy += std::norm(one.values[static_cast<std::size_t>(n)]);
  }
  for (std::int64_t lag = middle - kLargestLag; lag <= middle + kLargestLag; ++lag) {
    std::complex<double> product = 0.0;
    double energy = 0.0;
    const std::int64_t begin = std::max(from, -lag);
    const std::int64_t end = std::min(to, static_cast<std::int64_t>(other.values.size()) - lag);
    for (std::int64_t n = begin; n < end; ++n) {
      const std::complex<double>& value = other.values[static_cast<std::size_t>(n + lag)];
      product += std::conj(one.values[static_cast<std::size_t>(n)]) * value;
      energy += std::norm(value);
    }
    products.push_back(product);
    sizes.push_back(std::abs(product) / std::sqrt(oneEnergy * energy + 1e-30));
  }
  const auto best = std::clamp<std::ptrdiff_t>(std::max_element(sizes.begin(), sizes.end()) - sizes.begin(), 1,
                                               static_cast<std::ptrdiff_t>(sizes.size()) - 2);
  const auto index = static_cast<std::size_t>(best);
  // The top of the parabola through three points.
  const double curvature = std::min(sizes[index - 1] - 2.0 * sizes[index] + sizes[index + 1], -1e-12);
  const double part = std::clamp(0.5 * (sizes[index - 1] - sizes[index + 1]) / curvature, -1.0, 1.0);
  return {static_cast<double>(middle - kLargestLag + best) + part, sizes[index], std::arg(products[index])};
}

double MedianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : 0.5 * (values[half - 1] + values[half]);
}

AlignedBursts AlignWindows(const std::vector<Window>& windows) {
  const std::size_t count = windows.size();
  std::vector<std::vector<Correlation>> correlations(count, std::vector<Correlation>(count));
  std::size_t reference = 0;
  double largest = -1.0;
  for (std::size_t one = 0; one < count; ++one) {
    double sum = 0.0;
    for (std::size_t other = 0; other < count; ++other) {
      if (one != other) {
        correlations[one][other] = Correlate(windows[one], windows[other]);
        sum += correlations[one][other].size;
      }
    }
    if (sum > largest) {
      largest = sum;
      reference = one;
    }
  }
  AlignedBursts aligned;
  const Window& chosen = windows[reference];
  aligned.onset = static_cast<double>(chosen.begin) + chosen.onset;
  std::vector<double> sizes;
  for (std::size_t other = 0; other < count; ++other) {
    if (other != reference) {
      sizes.push_back(correlations[reference][other].size);
    }
  }
  const double median = sizes.empty() ? 0.0 : MedianOf(sizes);
  const double least = std::max(kLikeness * median, std::min(1.0 - kLacking * (1.0 - median), 1.0 - kLittleLacking));
  for (std::size_t other = 0; other < count; ++other) {
    const Correlation& correlation = correlations[reference][other];
    if (other == reference) {
      aligned.reference = aligned.bursts.size();
      aligned.bursts.push_back({chosen.pair, aligned.onset, 1.0, 0.0});
    } else if (correlation.size >= least) {
      const double position = static_cast<double>(windows[other].begin) + chosen.onset + correlation.lag;
      aligned.bursts.push_back({windows[other].pair, position, correlation.size, correlation.phase});
      aligned.likeness = std::min(aligned.likeness, correlation.size);
    }
  }
  return aligned;
}

}  // namespace

AlignedBursts Align(const Samples& samples, const BaseBand& band, const FilteredBurst& shape, const ToneBursts& found,
                    std::int64_t usableEnd) {
  std::vector<Window> windows;
  for (std::size_t pair = 0; pair < found.positions.size(); ++pair) {
    if (!found.positions[pair]) {
      continue;
    }
    Window window;
    window.pair = pair;
    window.begin = *found.positions[pair] - kBefore;
    window.values = band.Values(samples, window.begin, kWindow, 1);
    const std::int64_t usable = std::clamp<std::int64_t>(usableEnd - window.begin, 0, kWindow);
    std::fill(window.values.begin() + static_cast<std::ptrdiff_t>(usable), window.values.end(), 0.0);
    if (FindRoughOnset(window, shape, found.noisePower)) {
      windows.push_back(std::move(window));
    }
  }
  if (windows.empty()) {
    return {};
  }
  std::vector<Window> whole;
  std::copy_if(windows.begin(), windows.end(), std::back_inserter(whole),
               [&](const Window& window) { return window.IsWhole(usableEnd); });
  AlignedBursts aligned = AlignWindows(whole.empty() ? std::vector<Window>{windows.front()} : whole);
  aligned.isCut = whole.empty();
  for (const Window& window : windows) {
    if (window.pair == aligned.bursts[aligned.reference].pair) {
      aligned.peakToNoise = window.peak / std::sqrt(found.noisePower / static_cast<double>(aligned.bursts.size()));
    }
  }
  return aligned;
}

std::vector<std::complex<double>> MeanOf(const Samples& samples, const BaseBand& band, const AlignedBursts& aligned,
                                         std::int64_t position, const std::vector<std::int64_t>& offsets,
                                         double turnPerSample) {
  std::vector<std::complex<double>> mean(offsets.size());
  const double reference = aligned.bursts[aligned.reference].position;
  for (const AlignedBurst& burst : aligned.bursts) {
    const std::int64_t moved = position + std::llround(burst.position - reference);
    for (std::size_t n = 0; n < offsets.size(); ++n) {
      mean[n] += band.Values(samples, moved + offsets[n], 1, 1).front() * std::polar(1.0, -burst.phase);
    }
  }
  for (std::size_t n = 0; n < offsets.size(); ++n) {
    mean[n] *=
        std::polar(1.0 / static_cast<double>(aligned.bursts.size()), -turnPerSample * static_cast<double>(offsets[n]));
  }
  return mean;
}

double RoundingOf(const AlignedBursts& aligned) {
  const double reference = aligned.bursts[aligned.reference].position;
  double sum = 0.0;
  for (const AlignedBurst& burst : aligned.bursts) {
    const double moved = burst.position - reference;
    sum += moved - static_cast<double>(std::llround(moved));
  }
  return sum / static_cast<double>(aligned.bursts.size());
}

}  // namespace orvex::fine
