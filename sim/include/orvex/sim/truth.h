// What a perfect measurement would find.
#pragma once

#include "orvex/sim/room_config.h"

namespace orvex::sim {

// Arrival of the optical path's direct sound minus that of the television's speaker, at the microphone, in
// milliseconds, with `spdifDelayMs` in force, which the output limits as Room::SetSpdifDelayMs() does. Positive: the
// optical output is late. Putting the delay `spdifDelayMs - MisalignmentMs()` in force makes it 0, as long as both
// delays are within 0 to Room::kMaxSpdifDelayMs.
double MisalignmentMs(const RoomConfig& config, double spdifDelayMs);

}  // namespace orvex::sim
