// What orvex-pc calibrate prints.
#include "pc/calibration_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/json_text.h"
#include "pc/microphone_check.h"

namespace orvex::tools {
namespace {

Calibration Aligned() {
  Calibration calibration;
  calibration.verdict = PcVerdict::kAligned;
  calibration.beforeMs = 183.24;
  calibration.coarseMs = 181.5;
  calibration.appliedMs = 16.8;
  calibration.afterMs = 0.08;
  calibration.intervalMs = {-0.22, 0.38};
  calibration.level17Db = 46.0;
  calibration.level19Db = 40.5;
  calibration.terminate = "done";
  calibration.durationS = 8.25;
  return calibration;
}

TEST(PcReport, OneLineSaysWhatWasAndWhatIs) {
  EXPECT_EQ("aligned: before +183.2 ms, now +0.1 ± 0.3 ms; delay 16.8 ms\n", CalibrationText(Aligned()));
}

TEST(PcReport, NothingIsPlusNothing) {
  Calibration calibration = Aligned();
  calibration.afterMs = -0.04;
  EXPECT_EQ("aligned: before +183.2 ms, now +0.0 ± 0.3 ms; delay 16.8 ms\n", CalibrationText(calibration));
}

TEST(PcReport, TheIntervalIsNeverToldNarrowerThanItIs) {
  Calibration calibration = Aligned();
  calibration.intervalMs = {0.06, 0.1};
  EXPECT_EQ("aligned: before +183.2 ms, now +0.1 ± 0.1 ms; delay 16.8 ms\n", CalibrationText(calibration));
}

TEST(PcReport, OneLineSaysWhyThereIsNoDifference) {
  Calibration calibration;
  calibration.verdict = PcVerdict::kNoDifference;
  calibration.words = "nothing is heard";
  calibration.appliedMs = 5.0;
  EXPECT_EQ("no_difference: nothing is heard; delay 5.0 ms\n", CalibrationText(calibration));
}

TEST(PcReport, WhatRemainedOfADelayThatWasTakenBackIsNotTheDifferenceNow) {
  Calibration calibration = Aligned();
  calibration.verdict = PcVerdict::kWorse;
  calibration.words = "it does not agree";
  EXPECT_EQ("worse: it does not agree; before +183.2 ms, with the delay that was tried +0.1 ± 0.3 ms; delay 16.8 ms\n",
            CalibrationText(calibration));
}

TEST(PcReport, OneLineSaysTheDifferenceThatCannotBeCorrected) {
  Calibration calibration;
  calibration.verdict = PcVerdict::kOutOfRange;
  calibration.words = "swap them";
  calibration.beforeMs = 40.0;
  calibration.intervalMs = {39.9, 40.1};
  EXPECT_EQ("out_of_range: swap them; difference +40.0 ± 0.1 ms\n", CalibrationText(calibration));
}

TEST(PcReport, TheObjectHasEveryFieldOfACalibration) {
  const Json::Value json = port::ParseJson(CalibrationJson(Aligned()));
  EXPECT_EQ("aligned", json["verdict"].asString());
  EXPECT_TRUE(json["reason"].isNull());
  EXPECT_EQ(183.24, json["before_ms"].asDouble());
  EXPECT_EQ(181.5, json["coarse_ms"].asDouble());
  EXPECT_EQ(16.8, json["applied_ms"].asDouble());
  EXPECT_EQ(0.08, json["after_ms"].asDouble());
  ASSERT_EQ(2U, json["interval_ms"].size());
  EXPECT_EQ(-0.22, json["interval_ms"][0].asDouble());
  EXPECT_EQ(0.38, json["interval_ms"][1].asDouble());
  EXPECT_EQ(46.0, json["level_17_db"].asDouble());
  EXPECT_EQ(40.5, json["level_19_db"].asDouble());
  EXPECT_EQ("done", json["terminate"].asString());
  EXPECT_EQ(8.25, json["duration_s"].asDouble());
}

TEST(PcReport, WhatIsNotKnownIsNull) {
  const Json::Value json = port::ParseJson(CalibrationJson({}));
  for (const char* key :
       {"before_ms", "coarse_ms", "applied_ms", "after_ms", "interval_ms", "level_17_db", "level_19_db"}) {
    EXPECT_TRUE(json.isMember(key) && json[key].isNull()) << key;
  }
  EXPECT_EQ("failed", json["verdict"].asString());
  EXPECT_EQ("etc", json["terminate"].asString());
}

TEST(PcReport, VerdictsHaveTheNamesThatProgramsRead) {
  const std::pair<PcVerdict, const char*> names[] = {{PcVerdict::kAligned, "aligned"},
                                                     {PcVerdict::kWorse, "worse"},
                                                     {PcVerdict::kNoDifference, "no_difference"},
                                                     {PcVerdict::kOutOfRange, "out_of_range"},
                                                     {PcVerdict::kNoMicrophone, "no_microphone"},
                                                     {PcVerdict::kFailed, "failed"}};
  for (const auto& [verdict, name] : names) {
    EXPECT_STREQ(name, NameOf(verdict));
  }
}

TEST(PcMicrophone, OneSampleThatIsNotZeroIsNoDigitalSilence) {
  VoiceSamples samples(1000);
  EXPECT_TRUE(IsDigitalSilence(samples));
  samples[999] = -1;
  EXPECT_FALSE(IsDigitalSilence(samples));
}

TEST(PcMicrophone, SaysTheReadingsOwnReasonWhenBothTonesAreHeard) {
  fine::Reading reading;
  reading.isHeard = {true, true};
  reading.reason = "the bursts of 19 kHz are too weak";
  EXPECT_THAT(WhyUnread(VoiceSamples(10, 5), reading, 0),
              testing::StartsWith("the bursts of 19 kHz are too weak: turn the outputs up"));
}

TEST(PcMicrophone, SaysThatSoundWasLostInsteadOfAskingForMore) {
  fine::Reading reading;
  reading.isHeard = {true, true};
  reading.reason = "only one pair of bursts";
  EXPECT_EQ(
      "only one pair of bursts: the computer was too busy and lost sound 12 times: let it finish what it does, and "
      "try again",
      WhyUnread(VoiceSamples(10, 5), reading, 12));
  reading.isHeard = {true, false};
  EXPECT_THAT(
      WhyUnread(VoiceSamples(10, 5), reading, 1),
      testing::AllOf(testing::HasSubstr("does the microphone reach 19 kHz"), testing::HasSubstr("lost sound once:")));
  EXPECT_THAT(WhyUnread(VoiceSamples(10, 0), reading, 1), testing::Not(testing::HasSubstr("busy")));
}

}  // namespace
}  // namespace orvex::tools
