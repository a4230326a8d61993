// What several runs came to together, as JSON and as text.
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tv/run_figures.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;

RunSummary RunThatLeft(std::optional<double> remainingMs) {
  RunSummary run;
  run.ending.exitCode = 0;
  run.report.terminate = kFoundDifference;
  run.report.wantedMs = 50;
  run.delayAfterMs = 50;
  run.misalignmentBeforeMs = 40.0;
  run.misalignmentAfterMs = remainingMs;
  return run;
}

TEST(RunFigures, AreMeanStandardDeviationAndTheOneFarthestFromZero) {
  RunFigures figures(3);
  for (const double remainingMs : {7.0, -9.0, 5.0}) {
    figures.Add(RunThatLeft(remainingMs));
  }
  EXPECT_DOUBLE_EQ(1.0, figures.MeanMs().value());
  EXPECT_DOUBLE_EQ(std::sqrt((36.0 + 100.0 + 16.0) / 2.0), figures.SpreadMs().value());
  EXPECT_DOUBLE_EQ(-9.0, figures.WorstMs().value());
  EXPECT_TRUE(figures.AreAllGood());
  EXPECT_EQ(
      "  runs                    3, 3 succeeded\n"
      "  remaining misalignment  mean +1.0 ms, spread 8.7 ms, worst -9.0 ms\n",
      figures.ToText());
}

TEST(RunFigures, CountARunThatDidNotSucceedAndLeaveOutWhatIsNotKnown) {
  RunFigures figures(3);
  figures.Add(RunThatLeft(7.0));
  figures.Add(RunThatLeft(30.0));
  figures.Add(RunThatLeft(std::nullopt));
  EXPECT_FALSE(figures.AreAllGood());
  const Json::Value json = figures.ToJson();
  EXPECT_EQ(3, json["asked"].asInt());
  EXPECT_EQ(3, json["runs"].asInt());
  EXPECT_EQ(1, json["succeeded"].asInt());
  EXPECT_DOUBLE_EQ(18.5, json["remaining_mean_ms"].asDouble());
  EXPECT_DOUBLE_EQ(30.0, json["remaining_worst_ms"].asDouble());
}

TEST(RunFigures, OfFewerRunsThanWereAskedForSaySo) {
  RunFigures figures(5);
  EXPECT_THAT(figures.ToText(), HasSubstr("0 of 5, then interrupted, 0 succeeded\n"));
  EXPECT_TRUE(figures.ToJson()["remaining_mean_ms"].isNull());
  figures.Add(RunThatLeft(7.0));
  EXPECT_FALSE(figures.AreAllGood());
  EXPECT_THAT(figures.ToText(), HasSubstr("1 of 5, then interrupted, 1 succeeded\n"));
  EXPECT_THAT(figures.ToText(), HasSubstr("mean +7.0 ms, spread unknown, worst +7.0 ms\n"));
}

}  // namespace
}  // namespace orvex::tools
