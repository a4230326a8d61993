// What a perfect measurement would find.
#pragma once

#include "orvex/sim/room_config.h"

namespace orvex::sim {

// When the optical path's direct sound arrives at the microphone, minus when that of the television's speaker does, in
// milliseconds. Positive: the optical output is late. `spdifDelayMs` is the delay in force, clamped as
// Room::SetSpdifDelayMs() clamps it. With a delay of `spdifDelayMs - MisalignmentMs()` the misalignment is 0, as long
// as both delays are within 0 to Room::kMaxSpdifDelayMs.
double MisalignmentMs(const RoomConfig& config, double spdifDelayMs);

}  // namespace orvex::sim
