// What the microphone hears of one impulse on a path: direct sound, reflections and tail, at the microphone's rate.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "orvex/sim/room_config.h"

namespace orvex::sim {

struct ImpulseResponse {
  struct Tap {
    std::int64_t offset;  // microphone samples after the direct sound; can be negative in an early reflection
    float gain;
  };

  double directDelayS = 0.0;    // latency and travel time through the air
  std::vector<Tap> taps;        // direct sound, reflections, tail; offsets rise within each of them
  std::int64_t lastOffset = 0;  // the highest offset
};

// The tail is sparse noise of random signs (velvet noise). It begins kTailOnsetMs after the direct sound, falls by 60
// dB in rt60S and ends there; its energy lies directToReverberantDb below that of the direct sound.
ImpulseResponse MakeImpulseResponse(const PathConfig& path, double microphoneRateHz, std::mt19937_64 random);

constexpr double kTailOnsetMs = 3.0;

}  // namespace orvex::sim
