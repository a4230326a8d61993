// What a calibration needs of the room and the computer in it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "run/log_follower.h"
#include "run/service_process.h"

namespace orvex::tools {

// What the microphone heard: signed 16-bit samples, kVoiceRateHz per second. Where sound was lost there are zeros.
using VoiceSamples = std::vector<std::int16_t>;

// One run of the calibration service, and what was heard meanwhile.
struct ServiceRun {
  VoiceSamples heard;
  std::size_t changedAt = 0;  // so many samples were heard when the service's delay was in force; all: it set none
  RunReport report;
  ServiceEnding ending;
};

// The microphone cannot be recorded. The text says why, and what to do.
class MicrophoneProblem : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// Every operation throws MicrophoneProblem, or CommandError for what else prevents it.
class LivingRoom {
public:
  virtual ~LivingRoom() = default;

  // The delay in force, in milliseconds.
  virtual double GetDelayMs() = 0;
  // Returns when the delay is in force.
  virtual void SetDelayMs(double delayMs) = 0;
  // Has the outputs run from now on, and listens until their clocks have settled.
  virtual VoiceSamples Prepare() = 0;
  virtual ServiceRun RunService() = 0;
  // Plays the test sound and listens until its last burst has come by the slower way.
  virtual VoiceSamples PlayAndListen() = 0;
  // How often sound has been lost so far, because the computer was too busy to work it off in time.
  virtual std::uint64_t CountLosses() = 0;
};

}  // namespace orvex::tools
