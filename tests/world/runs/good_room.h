// A run that succeeds unless something fails: a quiet room, a muted speaker beside another output, consent given.
#pragma once

#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room_config.h"
#include "world/runs/service_run.h"

namespace orvex::runs {

// The largest error that a measurement in whole buffers leaves, in ms: one buffer, and the truncation.
constexpr double kLargestErrorMs = kVoiceBlockMs + 1.0;

inline void PrepareGoodRun(ServiceRun& run) {
  run.world.muted = true;
  run.world.speaker = 1;
  run.world.settings[kConsentKey] = 1;
}

inline void UseGoodRoom(ServiceRun& run) {
  PrepareGoodRun(run);
  run.world.UseRoom(sim::RoomConfig());
}

}  // namespace orvex::runs
