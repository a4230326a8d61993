// orvex-replay from the outside: a run's own dump, and files that it cannot use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "integration/test_television.h"
#include "integration/tool_run.h"
#include "linux/json_text.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

// One JSON object per line.
std::vector<Json::Value> Objects(const std::string& output) {
  std::vector<Json::Value> objects;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    objects.push_back(port::ParseJson(line));
  }
  return objects;
}

std::vector<std::string> Events(const std::vector<Json::Value>& objects) {
  std::vector<std::string> events;
  for (const Json::Value& object : objects) {
    events.push_back(object["event"].asString());
  }
  return events;
}

TEST(Replay, OfARunsOwnDumpGivesThatRunsResultBitForBit) {
  for (const char* const opticalLatencyMs : {"20", "150"}) {
    const TestTelevision folder;
    const std::string kept = folder.PathOf("kept").string();
    const Json::Value run = RunTool({"run", "--json", "--optical-latency", opticalLatencyMs, "--keep", kept}).Json();
    ASSERT_EQ("done", run["terminate"].asString());
    const ToolRun replay = RunProgram(ORVEX_REPLAY_PROGRAM, {run["dump_file"].asString()});
    EXPECT_EQ("exit code 0", Describe(replay.ending)) << replay.errors;
    const std::vector<Json::Value> objects = Objects(replay.output);
    ASSERT_FALSE(objects.empty());
    EXPECT_EQ("ambient", objects.front()["event"].asString());
    EXPECT_EQ(35, objects.front()["buffer"].asInt());
    EXPECT_EQ("summary", objects.back()["event"].asString());
    EXPECT_EQ(run["difference_s"].asDouble(), objects.back()["run_difference_s"].asDouble());
  }
}

TEST(Replay, OfSilenceFindsNothing) {
  const TestTelevision folder;
  // 40 blocks, a short one of 100 samples and an odd byte.
  folder.WriteFile("silence", std::string(40 * kVoiceBlockBytes + 201, '\0'));
  const ToolRun replay = RunProgram(ORVEX_REPLAY_PROGRAM, {folder.PathOf("silence").string()});
  EXPECT_EQ("exit code 1", Describe(replay.ending));
  const std::vector<Json::Value> objects = Objects(replay.output);
  EXPECT_THAT(Events(objects), testing::ElementsAre("ambient", "summary"));
  EXPECT_EQ(41, objects.back()["buffers"].asInt());
  EXPECT_EQ(37, objects.back()["blocks"].asInt());
  EXPECT_EQ(0.0, objects.back()["ambient"]["17000"].asDouble());
}

// A pipe gives its bytes once only.
TEST(Replay, ReadsDumpsAndWaveFilesFromStandardInput) {
  const TestTelevision folder;
  folder.WriteFile("dump", std::string(40 * kVoiceBlockBytes, '\0'));
  ASSERT_EQ("exit code 0", Describe(RunProgram(ORVEX_TESTSOUND_PROGRAM, {folder.PathOf("wave").string()}).ending));
  std::string wave = folder.ReadFile("wave");
  wave[22] = 1;  // one channel
  folder.WriteFile("wave", wave);
  for (const char* const name : {"dump", "wave"}) {
    const std::string path = folder.PathOf(name).string();
    const ToolRun file = RunProgram(ORVEX_REPLAY_PROGRAM, {"--trace", path});
    const ToolRun pipe =
        RunProgram("/bin/sh", {"-c", "cat \"$1\" | \"$2\" --trace -", "sh", path, ORVEX_REPLAY_PROGRAM});
    EXPECT_EQ("exit code 1", Describe(pipe.ending)) << pipe.errors;
    EXPECT_THAT(pipe.output, HasSubstr("\"block\""));
    EXPECT_EQ(file.output, pipe.output);
  }
}

TEST(Replay, WritesAReportBesideItsLinesWithTheSameExitCode) {
  const TestTelevision folder;
  folder.WriteFile("silence", std::string(40 * kVoiceBlockBytes, '\0'));
  const std::string silence = folder.PathOf("silence").string();
  const ToolRun plain = RunProgram(ORVEX_REPLAY_PROGRAM, {silence});
  const ToolRun reported = RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", folder.PathOf("a.html").string(), silence});
  EXPECT_EQ("exit code 1", Describe(reported.ending)) << reported.errors;
  EXPECT_EQ(plain.output, reported.output);
  EXPECT_THAT(folder.ReadFile("a.html"), HasSubstr("<code>" + silence + "</code>"));
  EXPECT_THAT(folder.ReadFile("a.html"), HasSubstr("its ambient mean is exactly 0"));
}

TEST(Replay, RefusesAReportThatCannotBeWritten) {
  const TestTelevision folder;
  folder.WriteFile("silence", std::string(kVoiceBlockBytes, '\0'));
  const std::string silence = folder.PathOf("silence").string();
  const ToolRun unwritable = RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", "/nonexistent/a.html", silence});
  EXPECT_EQ("exit code 2", Describe(unwritable.ending));
  EXPECT_THAT(unwritable.errors, HasSubstr("/nonexistent/a.html: cannot be written: No such file or directory"));
}

TEST(Replay, WritesOneReportOfSeveralFilesAlsoWhenOneCannotBeRead) {
  const TestTelevision folder;
  folder.WriteFile("one", std::string(40 * kVoiceBlockBytes, '\0'));
  folder.WriteFile("two", std::string(2 * kVoiceBlockBytes, '\0'));
  const std::string page = folder.PathOf("a.html").string();
  const std::string one = folder.PathOf("one").string();
  const std::string two = folder.PathOf("two").string();
  const ToolRun whole = RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", page, one, two});
  EXPECT_EQ("exit code 1", Describe(whole.ending)) << whole.errors;
  EXPECT_EQ(RunProgram(ORVEX_REPLAY_PROGRAM, {one, two}).output, whole.output);
  const ToolRun partly = RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", page, one, "/nonexistent/dump", two});
  EXPECT_EQ("exit code 2", Describe(partly.ending));
  EXPECT_EQ(whole.output, partly.output);
  const std::string html = folder.ReadFile("a.html");
  EXPECT_THAT(html, HasSubstr("<h1>Replay of 3 recordings</h1>"));
  EXPECT_THAT(html, HasSubstr("<h2 id='recording-1-file'><code>" + one + "</code></h2>"));
  EXPECT_THAT(html, HasSubstr("Not read: /nonexistent/dump: cannot be read: No such file or directory"));
  EXPECT_THAT(html, HasSubstr("<h2 id='recording-3-file'><code>" + two + "</code></h2>"));
}

TEST(Replay, RefusesWhatItCannotReadAndGoesOnWithTheRest) {
  const TestTelevision folder;
  folder.WriteFile("empty", "");
  folder.WriteFile("broken.wav", "RIFF\1\1\1\1WAVEfmt ");
  const std::string empty = folder.PathOf("empty").string();
  const ToolRun missing = RunProgram(ORVEX_REPLAY_PROGRAM, {"/nonexistent/dump", empty});
  EXPECT_EQ("exit code 2", Describe(missing.ending));
  EXPECT_THAT(missing.errors, HasSubstr("/nonexistent/dump: cannot be read: No such file or directory"));
  EXPECT_THAT(missing.output, HasSubstr(empty));
  const ToolRun broken = RunProgram(ORVEX_REPLAY_PROGRAM, {folder.PathOf("broken.wav").string()});
  EXPECT_EQ("exit code 2", Describe(broken.ending));
  EXPECT_THAT(broken.errors, HasSubstr("broken.wav: no usable WAV file"));
  EXPECT_EQ("exit code 2", Describe(RunProgram(ORVEX_REPLAY_PROGRAM, {}).ending));
}

}  // namespace
}  // namespace orvex::integration
