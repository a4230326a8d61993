// What a run's log lines tell, line by line.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orvex/platform/remote_voice.h"
#include "run/log_follower.h"

namespace orvex::tools {
namespace {

using testing::ElementsAre;
using testing::Optional;

std::string Record(const std::string& message) {
  return "OrvexManager.cpp: m_StartOrvex(41) > \033[32m" + message + "\033[0m";
}

struct Followed {
  RunReport report;
  std::vector<std::string> news;
};

// Messages with a line end of their own come as two lines, as they do from the service.
Followed Follow(const std::vector<std::string>& messages, std::optional<std::int64_t> delayMs = std::nullopt) {
  LogFollower follower([delayMs] { return delayMs; });
  Followed followed;
  for (const std::string& message : messages) {
    std::string text = Record(message) + "\n";
    for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      if (const auto news = follower.Follow(text.substr(0, end))) {
        followed.news.push_back(*news);
      }
    }
  }
  followed.report = follower.GetReport();
  return followed;
}

TEST(LogFollower, KnowsNothingBeforeTheFirstLine) {
  const RunReport report = Follow({}).report;
  EXPECT_FALSE(report.baseMs || report.wantedMs || report.differenceS);
  EXPECT_EQ("etc", report.terminate);
  EXPECT_EQ("fail", report.result);
}

TEST(LogFollower, TellsAGoodRunFromItsFirstLineToItsEndRecord) {
  const Followed run =
      Follow({"ORVEX_START_SYNC", "spdif out delay = 100", "avoc delay = 100", "main out delay = 0, avoc delay = 100",
              "Temp file name=[/tmp/audio_dump_7_1][/tmp/audio_result_7_1.csv]", "completed ambient noise",
              "pcm start writing, buf 0x1, frames to write9824.", "pcm start writing, buf 0x1, frames to write9824.",
              "  ====> @ g_first index \n", "@ [RESULT] [100] - [105] : 0.0825 s\n", "completed calculation of delay",
              "diff time = 0.0825\n", "delay = 18", "after delay = 18", "avoc delay = 18",
              "text = {result=pass;delay=18;du=1534;terminate=done}"},
             18);
  EXPECT_THAT(run.report.baseMs, Optional(100u));
  EXPECT_THAT(run.report.wantedMs, Optional(18u));
  EXPECT_THAT(run.report.differenceS, Optional(5 * kVoiceBlockSamples / kVoiceRateHz));
  EXPECT_EQ("done", run.report.terminate);
  EXPECT_EQ("pass", run.report.result);
  EXPECT_EQ("/tmp/audio_dump_7_1", run.report.dumpFile);
  EXPECT_EQ("/tmp/audio_result_7_1.csv", run.report.resultFile);
  EXPECT_THAT(run.news,
              ElementsAre("run started", "recording", "ambient noise measured", "playing the test sound",
                          "first tone: 17 kHz, television's speaker",
                          "second tone: optical output +82.5 ms against the speaker", "delay in force: 18 ms"));
}

TEST(LogFollower, KnowsTheFilesOfEveryRecording) {
  const RunReport report = Follow({"Temp file name=[/tmp/audio_dump_7_1][/tmp/audio_result_7_1.csv]",
                                   "Temp file name=[/tmp/audio_dump_7_2][/tmp/audio_result_7_2.csv]"})
                               .report;
  EXPECT_EQ("/tmp/audio_dump_7_2", report.dumpFile);
  EXPECT_EQ("/tmp/audio_result_7_2.csv", report.resultFile);
  EXPECT_THAT(report.debugFiles, ElementsAre("/tmp/audio_dump_7_1", "/tmp/audio_result_7_1.csv", "/tmp/audio_dump_7_2",
                                             "/tmp/audio_result_7_2.csv"));
}

TEST(LogFollower, GivesAnOpticalOutputThatIsEarlyItsSign) {
  const Followed run = Follow({"@ g_first index (reverse)\n", "(ruvo)   ====> @ [RESULT] [105] - [100] : -0.0825 s\n",
                               "diff time = -0.0825\n"});
  EXPECT_THAT(run.report.differenceS, Optional(-5 * kVoiceBlockSamples / kVoiceRateHz));
}

TEST(LogFollower, SaysWhyARunEnds) {
  EXPECT_THAT(Follow({"no_diff_detected!!\n", "fail to play wave", "fail bt recoding", "by abnormal input"}).news,
              ElementsAre("no pair of tones with a difference was heard", "the test sound cannot be played",
                          "the remote's microphone cannot be started", "too much noise in the tones"));
}

TEST(LogFollower, SaysWhatIsInForceRatherThanWhatWasWritten) {
  EXPECT_THAT(Follow({"after delay = 67"}, 67).news, ElementsAre("delay in force: 67 ms"));
  EXPECT_THAT(Follow({"after delay = 67"}, 100).news, ElementsAre("delay not applied: 67 ms wanted, 100 ms in force"));
  EXPECT_THAT(Follow({"after delay = 67"}).news,
              ElementsAre("delay not applied: 67 ms wanted, the one in force cannot be read"));
}

TEST(LogFollower, BelievesTheDifferenceThatWasUsedRatherThanAnotherPair) {
  const RunReport report = Follow({"@ [RESULT] [100] - [105] : 0.0825 s\n", "diff time = 0.0660\n"}).report;
  EXPECT_THAT(report.differenceS, Optional(0.066));
}

TEST(LogFollower, HasNoDifferenceWhenTheServiceMeasuredZero) {
  const RunReport report = Follow({"@ [RESULT] [100] - [100] : 0.0000 s\n", "diff time = 0.0000\n"}).report;
  EXPECT_FALSE(report.differenceS.has_value());
}

TEST(LogFollower, TakesTheBaseFromTheFirstReadAfterTheStartOnly) {
  EXPECT_FALSE(Follow({"avoc delay = 50"}).report.baseMs.has_value());
  EXPECT_THAT(Follow({"ORVEX_START_SYNC", "avoc delay = 50", "avoc delay = 60"}).report.baseMs, Optional(50u));
}

struct LoggedEnd {
  std::vector<std::string> messages;
  const char* terminate;
  const char* result;
};

TEST(LogFollower, TellsHowARunEnded) {
  const LoggedEnd endings[] = {
      {{"no_diff_detected!!\n"}, "diff_fail", "fail"},
      {{"after delay = 5"}, "done", "pass"},
      {{"fail to play wave"}, "play_fail", "fail"},
      {{"fail bt recoding"}, "bt_fail", "fail"},
      {{"by abnormal input"}, "abnormal_input_fail", "fail"},
      {{"after delay = 5", "by abnormal input"}, "abnormal_input_fail", "pass"},
      {{"fail bt recoding", "text = {result=fail;delay=1;du=2;terminate=etc}"}, "etc", "fail"},
      {{"text = {result=pass;delay=1;du=2;terminate=done}", "by abnormal input"}, "done", "pass"},
      {{"text = {result=fail;delay=1;du=2;terminate=diff_fail}", "text = {result=pass;delay=3;du=4;terminate=done}"},
       "done",
       "pass"},
      {{"text = {device=none|-1;source=0;videoinfo=none|0|0;codec=0}"}, "etc", "fail"},
      {{"unrelated after delay = 5"}, "etc", "fail"},
  };
  for (const LoggedEnd& ending : endings) {
    const RunReport report = Follow(ending.messages).report;
    EXPECT_EQ(ending.terminate, report.terminate) << ending.messages.back();
    EXPECT_EQ(ending.result, report.result) << ending.messages.back();
  }
}

TEST(LogFollower, PassesOnWhatIsNoRecordOfTheLog) {
  LogFollower follower([] { return std::nullopt; });
  EXPECT_THAT(follower.Follow("room.json: expected one object"),
              Optional(std::string("room.json: expected one object")));
  EXPECT_EQ(std::nullopt, follower.Follow("\033[0m"));
  EXPECT_EQ(std::nullopt, follower.Follow(""));
}

TEST(LogFollower, SurvivesLinesThatAreCutOff) {
  for (const char* const message : {"Temp file name=", "Temp file name=[", "Temp file name=[a]", "Temp file name=[a][",
                                    "avoc delay = ", "after delay = x", "@ [RESULT] [1", "text = {result="}) {
    const Followed run = Follow({"ORVEX_START_SYNC", message});
    EXPECT_FALSE(run.report.baseMs || run.report.differenceS || run.report.wantedMs) << message;
    EXPECT_EQ("", run.report.dumpFile) << message;
  }
  EXPECT_EQ(std::nullopt,
            LogFollower([] { return std::nullopt; }).Follow("OrvexManager.cpp: m_StartOrvex(41) > \033["));
}

}  // namespace
}  // namespace orvex::tools
