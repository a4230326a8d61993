// Two services at the same time, each on a television of its own.
#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

TEST(Together, TwoServicesOnTwoTelevisionsDoNotDisturbEachOther) {
  constexpr double kDifferenceMs[] = {90.0, -120.0};
  constexpr int kBaseMs[] = {150, 40};
  std::vector<ExpectedRun> runs;
  for (const int n : {0, 1}) {
    const std::string brand = "Television " + std::to_string(n);
    const auto prepare = [=](const TestTelevision& television) {
      television.Set("delay/spdif", std::to_string(kBaseMs[n]));
      television.Set("tv/brand", brand);
      television.SetRoom(RoomWithDifference(kDifferenceMs[n], kBaseMs[n]));
    };
    Expectation expectation = DifferenceApplied(kBaseMs[n]);
    expectation.startRecord = "{device=" + brand + "|1;source=1;videoinfo=tv|6|60;codec=0}";
    runs.push_back({{brand, prepare, {}, {}}, expectation});
  }
  const std::vector<Observation> observations = PerformAndCheck(runs);
  for (const std::size_t n : {0U, 1U}) {
    EXPECT_NEAR(kDifferenceMs[n], MeasuredDifferenceS(observations[n]) * 1000.0, 17.0);
  }
}

}  // namespace
}  // namespace orvex::integration
