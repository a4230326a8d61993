// Two services at the same time, each on a television of its own.
#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

TEST(Together, TwoServicesOnTwoTelevisionsDoNotDisturbEachOther) {
  constexpr double kDifferenceMs[] = {90.0, -120.0};
  constexpr int kBaseMs[] = {150, 40};
  std::vector<Scenario> scenarios;
  for (const int n : {0, 1}) {
    const auto prepare = [=](const TestTelevision& television) {
      television.Set("delay/spdif", std::to_string(kBaseMs[n]));
      television.Set("tv/brand", "Television " + std::to_string(n));
      television.SetRoom(RoomWithDifference(kDifferenceMs[n], kBaseMs[n]));
    };
    scenarios.push_back({"television " + std::to_string(n), prepare, {}, {}});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (const std::size_t n : {0U, 1U}) {
    Expectation expectation = DifferenceApplied(kBaseMs[n]);
    expectation.startRecord = "{device=Television " + std::to_string(n) + "|1;source=1;videoinfo=tv|6|60;codec=0}";
    Check(observations[n], expectation);
    EXPECT_NEAR(kDifferenceMs[n], MeasuredDifferenceS(observations[n]) * 1000.0, 17.0);
  }
}

}  // namespace
}  // namespace orvex::integration
