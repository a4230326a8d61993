// What a run takes: time until the delay is applied, processor time, memory. Measured values are printed.
#include <algorithm>

#include <gtest/gtest.h>

#include "expectation.h"

namespace orvex::integration {
namespace {

// The shortest of some runs: another program that is busy at the moment makes one run longer, never shorter.
TEST(Cost, ARunInAQuietRoomIsShortAndCheap) {
  constexpr int kRuns = 3;
  constexpr long kMostMemoryKib = 16 * 1024;
  auto shortest = std::chrono::milliseconds::max();
  double leastProcessorS = 1e9;
  long leastMemoryKib = kMostMemoryKib * 1024;
  for (int run = 0; run < kRuns; ++run) {
    const Observation observation = Perform({"quiet room", WithRoom(RoomWithDifference(100.0, 100.0)), {}, {}});
    CheckEnding(observation);
    const auto duration = TimeBetween(observation, kIsCreating, "after delay = *");
    ASSERT_GE(duration.count(), 0) << observation.output;
    shortest = std::min(shortest, duration);
    leastProcessorS = std::min(leastProcessorS, observation.ending.processorSeconds);
    leastMemoryKib = std::min(leastMemoryKib, observation.ending.peakMemoryKib);
  }
  std::printf("until the delay is applied: %lld ms, processor time: %.3f s, memory: %ld KiB\n",
              static_cast<long long>(shortest.count()), leastProcessorS, leastMemoryKib);
  EXPECT_LT(shortest.count(), 2000);
#if !ORVEX_IS_SANITIZED
  EXPECT_LT(leastProcessorS, 0.25);
  EXPECT_LT(leastMemoryKib, kMostMemoryKib);
#endif
}

}  // namespace
}  // namespace orvex::integration
