// Measurements on one channel of a sound: where its bursts are, what they consist of, what is audible of them.
#pragma once

#include <cstddef>
#include <vector>

namespace orvex::tools {

using Channel = std::vector<double>;  // full scale is 1

// A stretch of sound between silences; `end` is the first frame after it.
struct Burst {
  std::size_t begin;
  std::size_t end;
};

double Peak(const Channel& channel);

// Stretches above `threshold`; pauses shorter than `gapFrames` belong to the stretch.
std::vector<Burst> FindBursts(const Channel& channel, double threshold, std::size_t gapFrames);

// Amplitude of the component at `frequencyHz` over the burst; that of a level sine is its peak.
double ToneAmplitude(const Channel& channel, const Burst& burst, double frequencyHz);

// The strongest component from 1 kHz to half the rate, on a grid of 10 Hz.
double DominantFrequencyHz(const Channel& channel, const Burst& burst);

// The highest peak of what is left of the channel below `frequencyHz`.
double PeakBelow(const Channel& channel, double frequencyHz);

double ToDb(double ratio);

}  // namespace orvex::tools
