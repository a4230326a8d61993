// Time in the models: nanoseconds since an epoch that the caller chooses, the same for all calls to one object.
#pragma once

#include <chrono>

namespace orvex::sim {

// The models never read a clock. Values may be negative; differences must fit (292 years).
using Time = std::chrono::nanoseconds;

}  // namespace orvex::sim
