// What a run takes: time until the delay is applied, processor time, memory. Measured values are printed.
#include <algorithm>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

// The sound goes on for a while behind that line, and nothing more is recorded.
const Step kNotePeakMemory{"ORVEX_EXIT", [](ServiceRun& run) { run.Note(std::to_string(run.ReadPeakMemoryKib())); }};

// The shortest of some runs: another program that is busy at the moment makes one run longer, never shorter.
TEST(Cost, ARunInAQuietRoomIsShortAndCheap) {
  constexpr int kRuns = 3;
  auto shortest = std::chrono::milliseconds::max();
  double leastProcessorS = 1e9;
  long mostMemoryKib = 0;
  for (int run = 0; run < kRuns; ++run) {
    const Observation observation =
        Perform({"quiet room", WithRoom(RoomWithDifference(100.0, 100.0)), {kNotePeakMemory}, {}});
    CheckEnding(observation);
    const auto duration = TimeBetween(observation, kIsCreating, "after delay = {u}");
    ASSERT_GE(duration.count(), 0) << observation.output;
    shortest = std::min(shortest, duration);
    leastProcessorS = std::min(leastProcessorS, observation.ending.processorSeconds);
    mostMemoryKib = std::max(mostMemoryKib, std::stol(observation.notes.at(0)));
  }
  std::printf("until the delay is applied: %lld ms, processor time: %.3f s, memory: %ld KiB\n",
              static_cast<long long>(shortest.count()), leastProcessorS, mostMemoryKib);
  EXPECT_LT(shortest.count(), 2000);
  EXPECT_LT(leastProcessorS, 0.25);
  EXPECT_GT(mostMemoryKib, 0);
  EXPECT_LT(mostMemoryKib, 16 * 1024);
}

}  // namespace
}  // namespace orvex::integration
