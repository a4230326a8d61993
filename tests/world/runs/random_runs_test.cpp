// Runs drawn by lot. ORVEX_WORLD_RUNS says how many, ORVEX_WORLD_SEED which one is the first: a failure names its seed,
// and ORVEX_WORLD_SEED=<seed> ORVEX_WORLD_RUNS=1 does that run again and prints its journal.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>

#include "world/runs/environment.h"
#include "world/runs/random_case.h"
#include "world/runs/run_rules.h"

namespace {

using namespace orvex::runs;
using testing::IsEmpty;

constexpr std::uint64_t kRuns = ORVEX_WORLD_RUNS;
constexpr std::uint64_t kFirstSeed = 1;

TEST(RandomRuns, KeepAllRules) {
  const std::uint64_t runs = FromEnvironment("ORVEX_WORLD_RUNS", kRuns);
  const std::uint64_t first = FromEnvironment("ORVEX_WORLD_SEED", kFirstSeed);
  std::map<std::string, int> ends;
  const auto begin = std::chrono::steady_clock::now();
  for (std::uint64_t seed = first; seed < first + runs; ++seed) {
    ServiceRun run;
    const std::string drawn = PrepareRandomRun(seed, run);
    SCOPED_TRACE("seed " + std::to_string(seed) + ": " + drawn);
    ASSERT_TRUE(run.Start());
    EXPECT_TRUE(run.ToEnd());
    EXPECT_THAT(CheckRun(run), IsEmpty());
    ++ends[run.Manager().GetTerminateStatus()];
    if (runs == 1) {
      run.world.journal.Print(std::cout);
    }
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  std::cout << runs << " runs, " << static_cast<double>(runs) / seconds.count() << " per second\n";
  for (const auto& [terminate, count] : ends) {
    std::cout << "  " << terminate << ": " << count << '\n';
  }
  if (runs >= kRuns) {
    EXPECT_GT(ends["done"], static_cast<int>(runs / 10)) << "hardly a run comes far enough to be worth drawing";
  }
}

}  // namespace
