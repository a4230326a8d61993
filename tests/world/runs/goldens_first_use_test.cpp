// The first run of a process, line by line: it also makes the process-wide objects.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "world/runs/golden_steps.h"
#include "world/runs/service_run.h"

namespace {

using namespace orvex::runs;

// Runs until the television asks for the end, 10 ms after the start, and says how the journal differs.
bool FirstRunIsGolden() {
  ServiceRun run(ShippedSound(), Process::kFresh);
  run.world.scheduler.At(std::chrono::milliseconds(10), orvex::world::Lane::kMainLoop, [&run] { run.Terminate(); });
  if (!run.Start() || !run.ToEnd()) {
    return false;
  }
  RunGolden golden([](int, double) { return 0.0; }, 0);
  golden.SetNewInstances("I0 [singleton] new instance").UntilRecording().At(10).On("main").Add("* termination");
  golden.Destroy({{RunGolden::Recorder::kRecording}, {}});
  const testing::AssertionResult agree = Agree(golden, run.world.journal);
  std::cerr << agree.message();
  return agree;
}

// In a process of its own: elsewhere another test may have been the first.
TEST(GoldenFirstUse, MakesTheOutputDelayAccessAtTheStartAndTheDumpWhenTheRemoteHasAccepted) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::_Exit(FirstRunIsGolden() ? EXIT_SUCCESS : EXIT_FAILURE), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
