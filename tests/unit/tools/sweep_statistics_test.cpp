// Compares the figures of a table row with figures that were calculated by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "sweep/statistics.h"

namespace orvex::tools {
namespace {

RoomResult Found(double errorMs) {
  RoomResult result;
  result.found = true;
  result.errorMs = errorMs;
  return result;
}

TEST(SweepStatistics, CountsSharesOfAllRoomsAndErrorsOfAllResults) {
  RoomResult wrong = Found(40.0);
  wrong.isFalse = true;
  RoomResult abnormal;
  abnormal.abnormal = true;
  const Statistics statistics = Summarise({Found(3.0), Found(-4.0), wrong, abnormal, RoomResult{}});
  EXPECT_EQ(5u, statistics.rooms);
  EXPECT_NEAR(60.0, statistics.foundPercent, 1e-9);
  EXPECT_NEAR(20.0, statistics.falsePercent, 1e-9);
  EXPECT_NEAR(20.0, statistics.offGridPercent, 1e-9);
  EXPECT_NEAR(20.0, statistics.abnormalPercent, 1e-9);
  EXPECT_NEAR(13.0, statistics.biasMs, 1e-9);
  EXPECT_NEAR(std::sqrt((9.0 + 16.0 + 1600.0) / 3.0), statistics.rmsMs, 1e-9);
  EXPECT_EQ(40.0, statistics.worstMs);
}

TEST(SweepStatistics, TakesForNinetyFivePercentTheErrorThatSoManyDoNotExceed) {
  std::vector<RoomResult> results;
  for (int error = 1; error <= 100; ++error) {
    results.push_back(Found(error % 2 == 0 ? error : -error));
  }
  EXPECT_EQ(95.0, Summarise(results).p95Ms);
  EXPECT_EQ(100.0, Summarise(results).worstMs);
}

TEST(SweepStatistics, CallsARoomWorseWhenMoreThanABufferWasAdded) {
  RoomResult kept = Found(0.0);
  kept.beforeMs = -10.0;
  kept.remainingMs = 26.4;
  RoomResult worse = kept;
  worse.remainingMs = -26.6;
  EXPECT_NEAR(50.0, Summarise({kept, worse}).worsePercent, 1e-9);
}

TEST(SweepStatistics, CountsRoomsWhoseRunAppliedAnotherResultThanItsFirst) {
  RoomResult changed = Found(0.0);
  changed.changed = true;
  EXPECT_NEAR(25.0, Summarise({changed, Found(0.0), Found(0.0), RoomResult{}}).changedPercent, 1e-9);
}

TEST(SweepStatistics, MeansTimesOverAllRooms) {
  RoomResult result = Found(0.0);
  result.decidedMs = 1000.0;
  result.endedMs = 3000.0;
  RoomResult nothing;
  nothing.decidedMs = nothing.endedMs = 4000.0;
  EXPECT_NEAR(2500.0, Summarise({result, nothing}).decidedMs, 1e-9);
  EXPECT_NEAR(3500.0, Summarise({result, nothing}).endedMs, 1e-9);
}

TEST(SweepStatistics, IsAllZeroWithoutARoom) {
  EXPECT_EQ(0.0, Summarise({}).foundPercent);
  EXPECT_EQ(0.0, Summarise({}).rmsMs);
}

// Against tables of the score interval.
TEST(SweepStatistics, KnowsHowSureAShareIs) {
  const auto check = [](double low, double high, const ShareInterval& interval) {
    EXPECT_NEAR(low, interval.lowPercent, 0.005);
    EXPECT_NEAR(high, interval.highPercent, 0.005);
  };
  check(40.38, 59.62, WilsonInterval(50.0, 100));
  check(0.0, 27.75, WilsonInterval(0.0, 10));
  check(72.25, 100.0, WilsonInterval(100.0, 10));
  check(0.0, 100.0, WilsonInterval(0.0, 0));
}

}  // namespace
}  // namespace orvex::tools
