// Only the direct sounds count; echoes and reverberation do not.
#include "orvex/sim/truth.h"

#include "sim/src/spdif_delay.h"

namespace orvex::sim {
namespace {

double ArrivalMs(const PathConfig& path) {
  return path.latencyMs + path.distanceM / kSpeedOfSoundMPerS * 1e3;
}

}  // namespace

double MisalignmentMs(const RoomConfig& config, double spdifDelayMs) {
  return LimitSpdifDelayMs(spdifDelayMs) + ArrivalMs(config.optical) - ArrivalMs(config.tv);
}

}  // namespace orvex::sim
