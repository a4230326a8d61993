// A reflection may lie between two samples, so it is spread over a kernel; a tap of the tail is moved to the nearest
// one.
#include "sim/src/impulse_response.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "sim/src/fractional_kernel.h"
#include "sim/src/units.h"

namespace orvex::sim {
namespace {

constexpr double kTailTapsPerS = 1500.0;             // dense enough to sound smooth
constexpr double kDecayPerRt60 = 6.907755278982137;  // ln(1000): 60 dB as an amplitude

void AddReflection(const Reflection& reflection, double directGain, double rateHz, ImpulseResponse& response) {
  const double delay = reflection.delayMs * 1e-3 * rateHz;
  const double whole = std::floor(delay);
  const double gain = directGain * AmplitudeOfDb(reflection.gainDb);
  const FractionalKernel kernel = MakeFractionalKernel(delay - whole);
  for (std::size_t k = 0; k < kernel.size(); ++k) {
    const std::int64_t offset = static_cast<std::int64_t>(whole) + 1 - kKernelHalf + static_cast<std::int64_t>(k);
    response.taps.push_back({offset, static_cast<float>(gain * static_cast<double>(kernel[k]))});
  }
}

// Divides the tail into cells of 1 / kTailTapsPerS and puts one tap of random sign at a random place in each; then
// scales all of them to the tail's energy.
void AddTail(const PathConfig& path, double directGain, double rateHz, std::mt19937_64& random,
             ImpulseResponse& response) {
  std::uniform_real_distribution<double> place(0.0, 1.0);
  std::bernoulli_distribution negative(0.5);
  const std::size_t first = response.taps.size();
  double energy = 0.0;
  const auto cells = static_cast<std::size_t>(std::ceil(path.rt60S * kTailTapsPerS));
  for (std::size_t cell = 0; cell < cells; ++cell) {
    const double timeS = (static_cast<double>(cell) + place(random)) / kTailTapsPerS;
    const double amplitude = std::exp(-kDecayPerRt60 * timeS / path.rt60S);
    energy += amplitude * amplitude;
    response.taps.push_back({static_cast<std::int64_t>(std::llround((kTailOnsetMs * 1e-3 + timeS) * rateHz)),
                             static_cast<float>(negative(random) ? -amplitude : amplitude)});
  }
  const double scale = directGain * AmplitudeOfDb(-path.directToReverberantDb) / std::sqrt(energy);
  for (std::size_t i = first; i < response.taps.size(); ++i) {
    response.taps[i].gain *= static_cast<float>(scale);
  }
}

}  // namespace

ImpulseResponse MakeImpulseResponse(const PathConfig& path, double microphoneRateHz, std::mt19937_64 random) {
  ImpulseResponse response;
  response.directDelayS = path.latencyMs * 1e-3 + path.distanceM / kSpeedOfSoundMPerS;
  const double directGain = AmplitudeOfDb(path.gainDb);
  response.taps.push_back({0, static_cast<float>(directGain)});
  for (const Reflection& reflection : path.reflections) {
    AddReflection(reflection, directGain, microphoneRateHz, response);
  }
  if (path.rt60S > 0.0) {
    AddTail(path, directGain, microphoneRateHz, random, response);
  }
  for (const ImpulseResponse::Tap& tap : response.taps) {
    response.lastOffset = std::max(response.lastOffset, tap.offset);
  }
  return response;
}

}  // namespace orvex::sim
