// Levels of tones are measured through a Hann window.
#include "unit/sim/signals.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>

namespace orvex::sim::test {
namespace {

constexpr double kPi = 3.14159265358979323846;

double Db(double amplitude) {
  return 20.0 * std::log10(amplitude);
}
bool IsSound(std::int16_t sample) {
  return sample != 0;
}

}  // namespace

RoomConfig MakeBareRoom() {
  RoomConfig config;
  for (PathConfig* path : {&config.tv, &config.optical}) {
    path->latencyMs = 0.0;
    path->gainDb = 0.0;
    path->distanceM = 0.0;
    path->reflections.clear();
    path->rt60S = 0.0;
  }
  config.noiseDbfs.reset();
  return config;
}

Samples MakeSilence(std::size_t frames) {
  return Samples(2 * frames, 0);
}

void AddImpulse(Samples& stereo, std::size_t channel, std::size_t frame, std::int16_t height) {
  stereo.at(2 * frame + channel) = height;
}

void AddTone(Samples& stereo, std::size_t channel, double frequencyHz, double dbfs) {
  const double amplitude = std::pow(10.0, dbfs / 20.0) * kFullScale;
  for (std::size_t i = 0; i < stereo.size() / 2; ++i) {
    const double value = amplitude * std::sin(2.0 * kPi * frequencyHz * static_cast<double>(i) / kPlaybackRateHz);
    stereo[2 * i + channel] = static_cast<std::int16_t>(std::lrint(value));
  }
}

Samples PlayAndRecord(Room& room, const Samples& stereo, std::size_t count, Time start) {
  room.Play(start, stereo.data(), stereo.size() / 2);
  room.StartRecording(Time{});
  return Record(room, count);
}

Samples Record(Room& room, std::size_t count) {
  Samples samples(count);
  room.Record(samples.data(), count);
  return samples;
}

// Finds the peak, and refines its position by the phase of a low frequency relative to it: a band-limited impulse is
// symmetric about its arrival.
double ArrivalSample(const Samples& recording, std::size_t first, std::size_t last) {
  constexpr double kAngle = 0.1;  // radian per sample
  const auto begin = recording.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = recording.begin() + static_cast<std::ptrdiff_t>(last);
  const auto peak = std::max_element(begin, end, [](int a, int b) { return std::abs(a) < std::abs(b); });
  std::complex<double> sum;
  for (auto sample = begin; sample != end; ++sample) {
    sum += static_cast<double>(*sample) * std::polar(1.0, -kAngle * static_cast<double>(sample - peak));
  }
  return static_cast<double>(peak - recording.begin()) - std::arg(sum) / kAngle;
}

double ArrivalSample(const Samples& recording) {
  return ArrivalSample(recording, 0, recording.size());
}

double ToneDbfs(const Samples& recording, double frequencyHz, double rateHz, std::size_t first, std::size_t last) {
  std::complex<double> sum;
  double weights = 0.0;
  for (std::size_t i = first; i < last; ++i) {
    const double place = static_cast<double>(i - first) / static_cast<double>(last - first);
    const double weight = 1.0 - std::cos(2.0 * kPi * place);
    sum += weight * recording[i] * std::polar(1.0, -2.0 * kPi * frequencyHz / rateHz * static_cast<double>(i));
    weights += weight;
  }
  return Db(2.0 * std::abs(sum) / weights / kFullScale);
}

double RmsDbfs(const Samples& recording) {
  return Db(std::sqrt(Energy(recording, 0, recording.size()) / static_cast<double>(recording.size())));
}

double Energy(const Samples& recording, std::size_t first, std::size_t last) {
  double energy = 0.0;
  for (std::size_t i = first; i < last; ++i) {
    energy += std::pow(recording[i] / kFullScale, 2.0);
  }
  return energy;
}

std::size_t FirstSound(const Samples& recording) {
  return static_cast<std::size_t>(std::find_if(recording.begin(), recording.end(), IsSound) - recording.begin());
}

std::size_t LastSound(const Samples& recording) {
  const auto last = std::find_if(recording.rbegin(), recording.rend(), IsSound);
  return static_cast<std::size_t>(recording.rend() - last) - 1;
}

int MaxDifference(const Samples& a, const Samples& b) {
  int difference = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference = std::max(difference, std::abs(a[i] - b[i]));
  }
  return difference;
}

}  // namespace orvex::sim::test
