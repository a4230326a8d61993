// Sounds that are not ours, as the microphone would hear them.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace orvex::tools {

enum class DisturbanceKind { kNone, kHiss, kClaps, kKeys, kWhine, kBurst, kBothBursts, kMusic, kRecording };

// By the kind's number.
extern const std::vector<std::string> kDisturbanceNames;

// Sampled at the microphone's nominal rate, kVoiceRateHz; full scale is 1.
using Sound = std::vector<float>;

struct DisturbanceSettings {
  DisturbanceKind kind = DisturbanceKind::kNone;
  double peakDbfs = -20.0;
  double blocks = 1.0;                             // length of the hiss
  const std::vector<Sound>* recordings = nullptr;  // for kRecording; it takes a piece of one of them
};

// What is heard from the start of the recording on, 4 s long; empty for kNone. Hiss, claps, keys and bursts begin by
// lot within two seconds after the ambient phase; whine, music and recordings within the first two seconds. Throws
// std::invalid_argument when recordings are asked for and there are none.
Sound MakeDisturbance(const DisturbanceSettings& settings, std::mt19937_64& random);

// Reads a WAV file of one channel at any rate. Throws std::runtime_error, naming the file.
Sound ReadSound(const std::string& path);

}  // namespace orvex::tools
