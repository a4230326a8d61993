// Sweeps of the fine reading: what is recorded of a room, what is read, and what the table says of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

#include "orvex/platform/remote_voice.h"
#include "sweep/one_room.h"
#include "sweep/plan.h"
#include "sweep/report.h"
#include "sweep/sweep.h"
#include "sweep/trial.h"
#include "testsound/generator.h"

namespace orvex::tools {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

using Given = std::map<axis::Axis, std::string>;

// Quiet, and nothing but direct sound; what is given comes on top.
Plan BarePlan(const Given& given) {
  Given all = {{axis::kToneDb, "60"}, {axis::kRt60S, "0"}, {axis::kReflections, "0"}};
  for (const auto& [axis, text] : given) {
    all[axis] = text;
  }
  return Plan(all, 1);
}

// The readers are kept between the tests: making one takes 0.1 s.
RoomResult ReadBare(const Given& given, std::size_t room = 0) {
  static FineReaders readers;
  return ReadRoom(BarePlan(given), 0, room, readers);
}

SweepResult SweepFinely(const Plan& plan, std::size_t rooms, unsigned jobs = 2) {
  SweepOptions options;
  options.isFine = true;
  options.rooms = rooms;
  options.jobs = jobs;
  return RunSweep(plan, options);
}

TEST(SweepFine, ReadsQuietBareRoomsToATenthOfAMillisecondAndMostIntervalsHoldTheTruth) {
  int held = 0;
  for (std::size_t room = 0; room < 10; ++room) {
    const RoomResult result = ReadBare({{axis::kRateErrorPpm, "-1600:1600"}}, room);
    ASSERT_TRUE(result.found) << room;
    EXPECT_LT(std::abs(result.errorMs), 0.1) << room;
    held += result.held ? 1 : 0;
    EXPECT_GT(result.halfWidthMs, 0.0) << room;
    EXPECT_LT(result.halfWidthMs, 0.1) << room;
  }
  EXPECT_GE(held, 8);
}

TEST(SweepFine, RecordsUntilTheSoundHasBeenHeard) {
  const RoomResult result = ReadBare({{axis::kDifferenceMs, "-200"}, {axis::kWayMs, "50"}, {axis::kStartMs, "10"}});
  const double startMs = 35 * kVoiceBlockMs + 30.0 + 10.0;
  EXPECT_NEAR(startMs + 50.0 + 200.0 + SoundDesign{}.DurationMs(), result.decidedMs, 0.1);
}

TEST(SweepFine, ReadsNothingWhenTheOpticalOutputIsSilent) {
  const RoomResult result = ReadBare({{axis::kOpticalGainDb, "-60"}});
  EXPECT_FALSE(result.found);
  EXPECT_FALSE(result.held);
}

TEST(SweepFine, CutsTheRecordingAfterTheLaterBurstBegins) {
  for (const char* difference : {"-200", "200"}) {
    const RoomResult result = ReadBare({{axis::kDifferenceMs, difference},
                                        {axis::kWayMs, "50"},
                                        {axis::kStartMs, "10"},
                                        {axis::kSkewMs, "0"},
                                        {axis::kCutMs, "8"}});
    const double onsetMs = 35 * kVoiceBlockMs + 30.0 + 10.0 + 50.0 + 200.0 + SoundDesign{}.leadInMs;
    EXPECT_NEAR(onsetMs + 8.0, result.decidedMs, 0.1) << difference;
    ASSERT_TRUE(result.found) << difference;
    EXPECT_LT(std::abs(result.errorMs), 0.2) << difference;
  }
}

TEST(SweepFine, ReadsNothingWhenTheCutLeavesTooLittleOfTheLaterBurst) {
  EXPECT_FALSE(ReadBare({{axis::kCutMs, "0.5"}}).found);
}

TEST(SweepFine, LosesAsManyBlocksAsTheAxisSaysAndReadsTheRest) {
  const double wholeMs = ReadBare({}).decidedMs;
  const RoomResult result = ReadBare({{axis::kLostBlocks, "3"}});
  EXPECT_NEAR(3 * kVoiceBlockMs, wholeMs - result.decidedMs, 1e-6);
  ASSERT_TRUE(result.found);
  EXPECT_LT(std::abs(result.errorMs), 0.1);
}

TEST(SweepFine, DrawsTheLostBlocksForEachRoomAndTheSameInEachRow) {
  const Plan plan({{axis::kToneDb, "46,60"}, {axis::kLostBlocks, "2"}}, 1);
  const std::vector<double> places = plan.Draw(0, 3).lostPlaces;
  EXPECT_THAT(places, SizeIs(2));
  EXPECT_THAT(places, Each(::testing::AllOf(::testing::Ge(0.0), ::testing::Lt(1.0))));
  EXPECT_EQ(places, plan.Draw(1, 3).lostPlaces);
  EXPECT_NE(places, plan.Draw(0, 4).lostPlaces);
  EXPECT_THAT(Plan({}, 1).Draw(0, 3).lostPlaces, SizeIs(0));
}

TEST(SweepFine, ReadsTheSoundThatARowPlays) {
  FineReaders readers;
  const Plan plan = BarePlan({{axis::kRampMs, "1.5,2.5"}});
  const auto first = readers.For(DesignOf(plan.Draw(0, 0)));
  EXPECT_EQ(first, readers.For(DesignOf(plan.Draw(0, 1))));
  EXPECT_NE(first, readers.For(DesignOf(plan.Draw(1, 0))));
  EXPECT_LT(std::abs(ReadRoom(plan, 0, 0, readers).errorMs), 0.1);
}

TEST(SweepTrialRecording, HasNothingOfTheBlocksThatTheRemoteLoses) {
  const auto recorded = [](const char* lossPercent) {
    const RoomValues values = BarePlan({{axis::kLossPercent, lossPercent}, {axis::kStartMs, "10"}}).Draw(0, 0);
    Trial trial = MakeTrial(values, 1);
    trial.sound = GenerateSound(DesignOf(values));
    return static_cast<double>(RecordTrial(trial, 400.0).size()) * 1e3 / kVoiceRateHz;
  };
  EXPECT_NEAR(35 * kVoiceBlockMs + 30.0 + 10.0 + 400.0, recorded("0"), 0.1);
  EXPECT_EQ(0.0, recorded("100"));
}

std::string Report(const Plan& plan, const SweepResult& result) {
  std::ostringstream text;
  WriteTable(text, plan, result);
  WriteCsv(text, plan, result);
  return text.str();
}

TEST(SweepFine, GivesTheSameTableAndFileWhateverTheNumberOfJobs) {
  const Plan plan = BarePlan({{axis::kCutMs, "3:16"}, {axis::kLostBlocks, "0,1"}});
  const std::string one = Report(plan, SweepFinely(plan, 2, 1));
  EXPECT_EQ(one, Report(plan, SweepFinely(plan, 2, 3)));
  EXPECT_EQ(2 + 1 + 2 * 2 + 1, std::count(one.begin(), one.end(), '\n'));
}

RoomResult Reading(double errorMs, double halfWidthMs) {
  RoomResult result;
  result.found = true;
  result.errorMs = errorMs;
  result.halfWidthMs = halfWidthMs;
  result.held = std::abs(errorMs) <= halfWidthMs;
  return result;
}

SweepResult ThreeReadingsOfFourRooms() {
  SweepResult result;
  result.isFine = true;
  result.rows = {{Reading(0.0625, 0.25), Reading(-0.5, 0.125), RoomResult{}, Reading(1.25, 2.0)}};
  result.done = result.planned = 4;
  return result;
}

TEST(SweepFine, PrintsSharesErrorsAndIntervalsOfTheReadings) {
  std::ostringstream table;
  WriteTable(table, Plan({}, 1), ThreeReadingsOfFourRooms());
  EXPECT_EQ(
      "rooms  read %   bias    RMS   95 %  worst  held %   half  >1 ms %\n"
      "    4   75.00  0.271  0.778  1.250  1.250   66.67  0.250    33.33\n",
      table.str());
}

TEST(SweepFine, TakesTheMeanOfTheTwoInTheMiddleForTheHalfWidthOfAnEvenNumber) {
  EXPECT_EQ(0.1875,
            Summarise({Reading(0.0, 0.25), Reading(0.0, 9.0), Reading(0.0, 0.125), Reading(0.0, 0.0625)}).halfWidthMs);
}

TEST(SweepFine, WritesEachReadingIntoTheFile) {
  std::ostringstream file;
  WriteCsv(file, Plan({{axis::kCutMs, "5"}, {axis::kLostBlocks, "1"}}, 1), ThreeReadingsOfFourRooms());
  const std::string text = file.str();
  EXPECT_THAT(text, HasSubstr(",reflection-db,lost-blocks,cut-ms,outcome,error-ms,half-ms,held\n"));
  EXPECT_THAT(text, HasSubstr(",1.0000,5.0000,read,0.0625,0.2500,yes\n"));
  EXPECT_THAT(text, HasSubstr(",1.0000,5.0000,read,-0.5000,0.1250,no\n"));
  EXPECT_THAT(text, HasSubstr(",1.0000,5.0000,nothing,,,\n"));
}

TEST(SweepFine, LeavesItsAxesOutOfTheFileOfTheReceiver) {
  SweepResult result = ThreeReadingsOfFourRooms();
  result.isFine = false;
  std::ostringstream file;
  WriteCsv(file, Plan({}, 1), result);
  EXPECT_THAT(file.str(), HasSubstr(",reflection-db,outcome,error-ms,remaining-ms,"));
  EXPECT_THAT(file.str(), Not(HasSubstr("cut-ms")));
}

TEST(SweepFine, TellsWhyADesignCannotBeMade) {
  EXPECT_THROW(SweepFinely(Plan({{axis::kRampMs, "10"}}, 1), 1), std::invalid_argument);
}

TEST(SweepFine, WritesTheRoomsThatAreDoneWhenItIsInterrupted) {
  SweepOptions options;
  options.isFine = true;
  options.rooms = 4;
  int left = 1;
  options.isInterrupted = [&] { return --left < 0; };
  const Plan plan = BarePlan({});
  const std::string part = Report(plan, RunSweep(plan, options));
  EXPECT_THAT(part, StartsWith("rooms  read %"));
  EXPECT_THAT(part, HasSubstr("\nincomplete: interrupted after 1 of 4 rooms\n"));
}

}  // namespace
}  // namespace orvex::tools
