// A run drawn by lot: a room, a television, what fails and what happens meanwhile.
#pragma once

#include <cstdint>
#include <string>

#include "world/runs/service_run.h"

namespace orvex::runs {

// Prepares `run`, which has not started. The same seed gives the same run. The answer tells what was drawn.
std::string PrepareRandomRun(std::uint64_t seed, ServiceRun& run);

}  // namespace orvex::runs
