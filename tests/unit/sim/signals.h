// Sounds to play into a room, and measurements of what its microphone recorded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room.h"

namespace orvex::sim::test {

using Samples = std::vector<std::int16_t>;

constexpr std::size_t kLeft = 0;   // the television's speaker
constexpr std::size_t kRight = 1;  // the optical output
constexpr double kFullScale = 32768.0;
constexpr double kPlaybackRateHz = Room::kPlaybackRateHz;
constexpr double kRateHz = kVoiceRateHz;                     // the microphone's, unless a test says otherwise
constexpr auto kSecond = static_cast<std::size_t>(kRateHz);  // samples of the microphone

// A room that changes nothing: no delay, no gain, no echo, no tail, no noise.
RoomConfig MakeBareRoom();

Samples MakeSilence(std::size_t frames);  // stereo
void AddImpulse(Samples& stereo, std::size_t channel, std::size_t frame, std::int16_t height = 30000);
// A steady tone whose amplitude is `dbfs` below full scale.
void AddTone(Samples& stereo, std::size_t channel, double frequencyHz, double dbfs);

// Plays `stereo` at `start` and records `count` samples from time 0 on.
Samples PlayAndRecord(Room& room, const Samples& stereo, std::size_t count, Time start = Time{});
Samples Record(Room& room, std::size_t count);

// Position of the recording's only impulse between samples `first` and `last`, in fractions of a sample.
double ArrivalSample(const Samples& recording, std::size_t first, std::size_t last);
double ArrivalSample(const Samples& recording);
// Amplitude of a tone, in dB of full scale, over samples `first` to `last`.
double ToneDbfs(const Samples& recording, double frequencyHz, double rateHz, std::size_t first, std::size_t last);
double RmsDbfs(const Samples& recording);
// Sum of squares of samples `first` to `last`, in units of full scale.
double Energy(const Samples& recording, std::size_t first, std::size_t last);
// Number of the first sample that is not 0; the recording's size if there is none.
std::size_t FirstSound(const Samples& recording);
std::size_t LastSound(const Samples& recording);
// The largest difference between two recordings of one size.
int MaxDifference(const Samples& a, const Samples& b);

}  // namespace orvex::sim::test
