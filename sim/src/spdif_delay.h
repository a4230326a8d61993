// The delays that the S/PDIF output can have.
#pragma once

#include <algorithm>

#include "orvex/sim/room.h"

namespace orvex::sim {

// Negative or NaN counts as 0.
inline double LimitSpdifDelayMs(double delayMs) {
  return delayMs > 0.0 ? std::min(delayMs, Room::kMaxSpdifDelayMs) : 0.0;
}

}  // namespace orvex::sim
