// What orvex-tv prints about a run, as JSON and as text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/json_text.h"
#include "orvex/platform/remote_voice.h"
#include "tv/run_summary.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;
using testing::Not;

RunSummary GoodRun() {
  RunSummary summary;
  summary.report = {100u, 18u, 5 * kVoiceBlockSamples / kVoiceRateHz, "done", "pass", "/tmp/dump", "/tmp/result"};
  summary.ending.exitCode = 0;
  summary.ending.duration = std::chrono::milliseconds(3290);
  summary.misalignmentBeforeMs = 90.0;
  summary.misalignmentAfterMs = 8.0;
  summary.delayAfterMs = 18;
  Json::Value event;
  event["event"] = "ORVEXSET";
  summary.events.push_back(event);
  return summary;
}

Json::Value Parsed(const RunSummary& summary) {
  return port::ParseJson(SummaryJson(summary));
}

TEST(SummaryJson, SaysEverythingAboutAGoodRun) {
  const Json::Value json = Parsed(GoodRun());
  EXPECT_EQ("aligned", json["verdict"].asString());
  EXPECT_EQ("done", json["terminate"].asString());
  EXPECT_EQ("pass", json["result"].asString());
  EXPECT_EQ(100, json["base_ms"].asInt());
  EXPECT_EQ(18, json["applied_ms"].asInt());
  EXPECT_DOUBLE_EQ(5 * kVoiceBlockSamples / kVoiceRateHz, json["difference_s"].asDouble());
  EXPECT_DOUBLE_EQ(90.0, json["misalignment_before_ms"].asDouble());
  EXPECT_DOUBLE_EQ(8.0, json["misalignment_after_ms"].asDouble());
  EXPECT_EQ(3290, json["duration_ms"].asInt());
  EXPECT_EQ(0, json["exit_code"].asInt());
  EXPECT_EQ("/tmp/dump", json["dump_file"].asString());
  EXPECT_EQ("/tmp/result", json["result_file"].asString());
  ASSERT_EQ(1u, json["events"].size());
  EXPECT_EQ("ORVEXSET", json["events"][0]["event"].asString());
}

TEST(SummaryJson, SaysTheDelayInForceWhenNoneWasApplied) {
  RunSummary summary = GoodRun();
  summary.report.wantedMs.reset();
  summary.delayAfterMs = 100;
  EXPECT_EQ(100, Parsed(summary)["applied_ms"].asInt());
}

TEST(SummaryJson, SaysNullWhereThereIsNothing) {
  const Json::Value json = Parsed(RunSummary{});
  for (const char* const key : {"base_ms", "difference_s", "applied_ms", "misalignment_before_ms",
                                "misalignment_after_ms", "exit_code", "dump_file", "result_file"}) {
    EXPECT_TRUE(json.isMember(key) && json[key].isNull()) << key;
  }
  EXPECT_TRUE(json["events"].isArray());
  EXPECT_EQ(0u, json["events"].size());
  EXPECT_EQ("failed", json["verdict"].asString());
  EXPECT_EQ(13u, json.size());
}

TEST(SummaryText, ShowsDelaysDifferenceAndTruth) {
  const std::string text = SummaryText(GoodRun());
  for (const char* const part : {"100 ms", "+82.5 ms", "18 ms", "+90.0 ms before, +8.0 ms after",
                                 "done (pass) after 3.29 s", "verdict                 aligned: +8.0 ms remain\n"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST(SummaryText, NamesTheRecordingIfOneIsKept) {
  RunSummary summary = GoodRun();
  EXPECT_THAT(SummaryText(summary), HasSubstr("  recording               /tmp/dump\n"));
  summary.report.dumpFile.clear();
  EXPECT_THAT(SummaryText(summary), Not(HasSubstr("recording")));
}

TEST(SummaryText, SaysWhichDelayIsInForceWhenItIsNotTheOneThatWasWanted) {
  RunSummary summary = GoodRun();
  summary.delayAfterMs = 100;
  EXPECT_THAT(SummaryText(summary), HasSubstr("applied delay           18 ms wanted, 100 ms in force\n"));
  summary.report.wantedMs.reset();
  EXPECT_THAT(SummaryText(summary), HasSubstr("applied delay           none wanted, 100 ms in force\n"));
}

TEST(SummaryText, IsWholeWhenADelayCannotBeRead) {
  RunSummary summary = GoodRun();
  summary.misalignmentBeforeMs.reset();
  EXPECT_THAT(SummaryText(summary), HasSubstr("true misalignment       unknown before, +8.0 ms after\n"));
  summary.misalignmentAfterMs.reset();
  summary.delayAfterMs.reset();
  const std::string text = SummaryText(summary);
  EXPECT_THAT(text, HasSubstr("applied delay           18 ms wanted, the one in force cannot be read\n"));
  EXPECT_THAT(text, HasSubstr("true misalignment       unknown before, unknown after\n"));
}

TEST(ServiceEnding, NamesWhatWentWrong) {
  ServiceEnding ending;
  ending.exitCode = 0;
  EXPECT_EQ("", ending.Problem());
  ending.exitCode = 3;
  EXPECT_EQ("the service ended with exit code 3", ending.Problem());
  ending.exitCode = 139;
  EXPECT_EQ("the service was ended by signal 11 (Segmentation fault)", ending.Problem());
  ending.limitReached = true;
  ending.duration = std::chrono::milliseconds(30001);
  EXPECT_EQ("the service did not end within 30001 ms and was killed", ending.Problem());
}

}  // namespace
}  // namespace orvex::tools
