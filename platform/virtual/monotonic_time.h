// The time base of sound and recording.
#pragma once

#include <chrono>

namespace orvex::virtual_tv {

// Since the epoch of CLOCK_MONOTONIC.
using MonotonicTime = std::chrono::nanoseconds;

// The standard library's steady clock is CLOCK_MONOTONIC.
inline MonotonicTime MonotonicNow() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace orvex::virtual_tv
