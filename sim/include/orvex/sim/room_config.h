// What a simulated television, its room and its remote control are like. Plain values with a working default: a quiet
// living room in which the optical output, with a delay of 100 ms, is 40 ms late.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "orvex/platform/remote_voice.h"

namespace orvex::sim {

// Thrown for an invalid room. The text names the room, the key, the value and what was expected.
class RoomError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// One echo, relative to the direct sound.
struct Reflection {
  double delayMs = 0.0;  // 0 to 1000
  double gainDb = 0.0;   // -200 to 40
};

// The path of one channel from the playback device to the microphone.
struct PathConfig {
  double latencyMs = 0.0;               // 0 to 10000, without the travel time through the air
  double gainDb = -20.0;                // -200 to 40, of the direct sound, attenuation by distance included
  double distanceM = 2.0;               // 0 to 1000, adds delay only, at kSpeedOfSoundMPerS
  std::vector<Reflection> reflections;  // at most 64
  double rt60S = 0.3;                   // 0 to 10, time in which the tail falls by 60 dB; 0: no tail
  double directToReverberantDb = 10.0;  // -60 to 100, energy of the direct sound over that of the tail
};

struct RoomConfig {
  PathConfig tv;               // left channel: the television's speaker
  PathConfig optical;          // right channel: S/PDIF output and external device, whose own latency is `latencyMs`
  bool opticalMuted = false;   // the external device is silent
  double opticalLockMs = 0.0;  // 0 to 10000, how much of a stream's start its receiver loses while it locks

  double microphoneRateHz = kVoiceRateHz;   // 20000 to 96000, nominal
  double rateErrorPpm = 0.0;                // -100000 to 100000; positive: the remote samples faster than nominal
  std::optional<double> noiseDbfs = -70.0;  // -200 to 0, RMS of white noise, 0 dBFS = 32768; none: no noise
  std::string noiseFile;         // path of a recording that adds to the noise, empty: none; see Room::SetNoise()
  double noiseFileGainDb = 0.0;  // -200 to 40

  double voiceLatencyMs = 30.0;       // 0 to 10000, from a block's last sample to its delivery
  double voiceJitterMs = 0.0;         // 0 to 10000, each block is late by up to this, uniformly distributed
  double voiceLossProbability = 0.0;  // 0 to 1, of a block
  double voiceWindowMs = 6000.0;      // 1 to 1000000, the remote falls silent this long after its last start or extend
  // 0 to 1000000, the remote falls silent this long after its start, extended or not; none: it does not.
  std::optional<double> silentAfterMs;

  std::uint64_t seed = 1;  // of noise, tails, jitter and loss

  RoomConfig();
};

constexpr double kSpeedOfSoundMPerS = 343.0;
constexpr std::size_t kMaxReflections = 64;

// Throws RoomError, naming `nameForErrors`, when a value is NaN or outside the range given above.
void CheckRoom(const RoomConfig& config, const std::string& nameForErrors);

// One number of a room by its name in JSON, such as "optical.lock_ms". Throw std::out_of_range for another name.
struct NumberRange {
  double minimum;
  double maximum;
};
NumberRange RangeOfNumber(const std::string& name);
// Does not check the range.
void SetNumber(RoomConfig& config, const std::string& name, double value);

// The rate at which the microphone samples, its error included.
double ActualMicrophoneRateHz(const RoomConfig& config);

bool operator==(const Reflection& a, const Reflection& b);
bool operator==(const PathConfig& a, const PathConfig& b);
bool operator==(const RoomConfig& a, const RoomConfig& b);

}  // namespace orvex::sim
