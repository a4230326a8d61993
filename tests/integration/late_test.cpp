// A main loop that is late at each wake-up, as on a busy television: blocks go on arriving meanwhile, and the result
// that came first is the one that is applied.
#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

constexpr int kLatenessesMs[] = {0, 20, 70, 200};
// In a living room that reverberates, these leave a rest that pairs with what was heard.
constexpr double kDifferencesMs[] = {-30.0, 25.0, 150.0};

TEST(Late, AppliesTheFirstResultHoweverLateTheMainLoopIs) {
  std::vector<Scenario> scenarios;
  for (const int latenessMs : kLatenessesMs) {
    for (const double differenceMs : kDifferencesMs) {
      const auto prepare = [=](const TestTelevision& television) {
        television.SetRoom(RoomWithDifference(differenceMs, 100.0));
        television.SetFaults(R"({"main_loop.late_ms": )" + std::to_string(latenessMs) + "}");
      };
      scenarios.push_back(
          {std::to_string(differenceMs) + " ms, late by " + std::to_string(latenessMs), prepare, {}, {}});
    }
  }
  for (const Observation& observation : Perform(scenarios)) {
    SCOPED_TRACE(observation.name);
    CheckEnding(observation);
    EXPECT_EQ(1, CountOf(observation.lines, "{s}@ [RESULT] [{s}"));
    CheckDifferenceApplied(observation);
  }
}

}  // namespace
}  // namespace orvex::integration
