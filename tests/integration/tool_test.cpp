// orvex-tv from the outside: what a run prints, what it comes to, exit codes.
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/expectation.h"
#include "integration/parallel.h"
#include "integration/tool_run.h"
#include "linux/json_text.h"

namespace orvex::integration {
namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr int kRuns = 20;
constexpr int kBaseMs = 350;  // more than any difference here: nothing is cut off at 0
constexpr double kLargestErrorMs = 17.0;

// 30 to 280 ms and as far to the other side, in turn.
double DifferenceMs(std::size_t run) {
  const double size = 30.0 + 250.0 * static_cast<double>(run / 2) / (kRuns / 2 - 1);
  return run % 2 == 0 ? size : -size;
}

ToolRun RunWithDifference(std::size_t run) {
  constexpr double kOpticalLatencyMs = 20.0;
  const double tvLatencyMs = kBaseMs + kOpticalLatencyMs - DifferenceMs(run);
  return RunTool({"run", "--json", "--seed", std::to_string(run + 1), "--base-delay", std::to_string(kBaseMs),
                  "--optical-latency", std::to_string(kOpticalLatencyMs), "--tv-latency", std::to_string(tvLatencyMs)});
}

void CheckRun(const ToolRun& run, double differenceMs) {
  SCOPED_TRACE(run.output + run.errors);
  EXPECT_EQ("exit code 0", Describe(run.ending));
  const Json::Value json = run.Json();
  ASSERT_TRUE(json.isObject());
  EXPECT_THAT(
      json.getMemberNames(),
      ElementsAre("applied_ms", "base_ms", "difference_s", "dump_file", "duration_ms", "events", "exit_code",
                  "misalignment_after_ms", "misalignment_before_ms", "result", "result_file", "terminate", "verdict"));
  EXPECT_EQ("aligned", json["verdict"].asString());
  EXPECT_EQ("done", json["terminate"].asString());
  EXPECT_EQ("pass", json["result"].asString());
  EXPECT_EQ(0, json["exit_code"].asInt());
  EXPECT_EQ(kBaseMs, json["base_ms"].asInt());
  EXPECT_NEAR(differenceMs, json["misalignment_before_ms"].asDouble(), 1e-3);
  EXPECT_EQ(DelayFor(kBaseMs, json["difference_s"].asDouble()), json["applied_ms"].asInt64());
  EXPECT_NEAR(differenceMs + json["applied_ms"].asDouble() - kBaseMs, json["misalignment_after_ms"].asDouble(), 1e-3);
  EXPECT_LE(std::abs(json["misalignment_after_ms"].asDouble()), kLargestErrorMs);
  EXPECT_EQ(0U, json["events"].size());  // nobody has agreed
}

TEST(Tool, TwentyRunsBringTheOutputsTogether) {
  std::vector<ToolRun> runs(kRuns);
  InParallel(kRuns, [&](std::size_t run) { runs[run] = RunWithDifference(run); });
  for (std::size_t run = 0; run < runs.size(); ++run) {
    CheckRun(runs[run], DifferenceMs(run));
  }
}

struct ToolCase {
  std::vector<std::string> arguments;
  const char* ending;
  const char* errors;  // part of stderr
};

TEST(Tool, TellsByItsExitCodeWhetherItWasDoneRefusedOrWronglyAsked) {
  const TestTelevision television;
  television.WriteFile("bad.json", R"({"tv": {"latency_ms": "long"}})");
  const std::string directory = television.GetDirectory().string();
  television.WriteFile("faults", R"({"voice.begin": -5})");
  const std::string badFaults = television.PathOf("faults").string();
  const std::string badRoom = television.PathOf("bad.json").string();
  const std::vector<ToolCase> rows{
      {{"list", "--tv", directory}, "exit code 0", ""},
      {{"get", "--tv", directory, "delay"}, "exit code 0", ""},
      {{"events", "--tv", directory}, "exit code 0", ""},
      {{"run", "--json", "--optical-muted"}, "exit code 1", ""},
      {{"run", "--json", "--service", "/nonexistent/service"}, "exit code 1", "/nonexistent/service cannot be started"},
      {{"send", "--tv", directory, "{}"}, "exit code 1", "messages.sock: no service listens"},
      {{}, "exit code 2", "a command is missing"},
      {{"dance"}, "exit code 2", "unknown command \"dance\""},
      {{"get", "--tv", directory, "nothing"}, "exit code 2", "\"nothing\" is no value of a television"},
      {{"set", "--tv", directory, "delay", "-1"}, "exit code 2", "\"-1\": expected an integer from 0 to 4294967295"},
      {{"run", "--base-delay", "soon"}, "exit code 2", "--base-delay"},
      {{"run", "--loss", "2"}, "exit code 2", "--loss: \"2\": expected a number from 0 to 1"},
      {{"run", "--room", badRoom}, "exit code 2", "bad.json: \"tv.latency_ms\" is \"long\", expected a number"},
      {{"run", "--faults", badFaults}, "exit code 2", "faults: \"voice.begin\": -5: expected a known operation"},
      {{"run", "--room", "/nonexistent/room"}, "exit code 2", "/nonexistent/room"},
  };
  std::vector<ToolRun> runs(rows.size());
  InParallel(rows.size(), [&](std::size_t row) { runs[row] = RunTool(rows[row].arguments); });
  for (std::size_t row = 0; row < rows.size(); ++row) {
    SCOPED_TRACE(testing::PrintToString(rows[row].arguments));
    EXPECT_EQ(rows[row].ending, Describe(runs[row].ending));
    EXPECT_THAT(runs[row].errors, HasSubstr(rows[row].errors));
  }
  EXPECT_EQ("100\n", runs[1].output);
  EXPECT_EQ("diff_fail", runs[3].Json()["terminate"].asString());
  EXPECT_EQ("no_difference", runs[3].Json()["verdict"].asString());
  EXPECT_TRUE(runs[3].Json()["difference_s"].isNull());
}

TEST(Tool, SaysWhichDelayIsInForceWhenTheWriteDidNotTake) {
  const TestTelevision television;
  television.SetFaults(R"({"delay.set": -1})");
  const ToolRun run = RunTool({"run", "--tv", television.GetDirectory().string()});
  EXPECT_EQ("exit code 1", Describe(run.ending));
  EXPECT_THAT(run.output, ContainsRegex("delay not applied: [0-9]+ ms wanted, 100 ms in force\n"));
  EXPECT_THAT(run.output, ContainsRegex("applied delay +[0-9]+ ms wanted, 100 ms in force\n"));
  EXPECT_EQ(100, television.Get("delay/spdif"));
}

// A tone that is 420 ms late pairs up with the next tone of the other channel, 640 ms behind its own one. A delay of
// 100 ms cannot be shortened by 170 ms.
TEST(Tool, TellsARunThatHelpedFromOneThatDidNot) {
  const ToolRun worse = RunTool({"run", "--json", "--optical-latency", "400"});
  EXPECT_EQ("exit code 1", Describe(worse.ending));
  EXPECT_EQ("worse", worse.Json()["verdict"].asString()) << worse.output;
  const ToolRun clamped = RunTool({"run", "--json", "--optical-latency", "150"});
  EXPECT_EQ("exit code 0", Describe(clamped.ending));
  EXPECT_EQ("clamped", clamped.Json()["verdict"].asString()) << clamped.output;
  EXPECT_EQ(0, clamped.Json()["applied_ms"].asInt());
}

// The values that a person changes are those that the service then finds.
TEST(Tool, RunsOnATelevisionThatIsKept) {
  const TestTelevision television;
  const std::string directory = television.GetDirectory().string();
  EXPECT_EQ("exit code 0", Describe(RunTool({"set", "--tv", directory, "delay", "220"}).ending));
  EXPECT_EQ("exit code 0", Describe(RunTool({"set", "--tv", directory, "brand", "Somebody"}).ending));
  const ToolRun run = RunTool({"run", "--json", "--tv", directory});
  const Json::Value json = run.Json();
  ASSERT_TRUE(json.isObject()) << run.output << run.errors;
  EXPECT_EQ(220, json["base_ms"].asInt());
  EXPECT_EQ(json["applied_ms"].asInt64(), television.Get("delay/spdif"));
  const Json::Value last = port::ParseJson(television.ReadFile("last_run.json"));
  EXPECT_EQ("done", last["terminate"].asString());
  EXPECT_EQ("pass", last["result"].asString());
  EXPECT_EQ(220, last["delay_before_ms"].asInt());
  EXPECT_EQ(json["applied_ms"].asInt64(), last["delay_after_ms"].asInt64());
  EXPECT_NEAR(1e3 * json["difference_s"].asDouble(), last["difference_ms"].asDouble(), 0.06);
  ASSERT_EQ(3U, json["events"].size());
  EXPECT_EQ("{device=Somebody|1;source=1;videoinfo=tv|6|60;codec=0}", json["events"][0]["value"].asString());
  EXPECT_THAT(json["events"][2]["value"].asString(), HasSubstr("terminate=done"));
  EXPECT_THAT(RunTool({"events", "--tv", directory}).output, HasSubstr("{device=Somebody|1;"));
}

struct StandardInputCase {
  std::string input;
  std::string command;
  const char* output;  // part of it, or of stderr
};

// What a file can hold can come through a pipe.
TEST(Tool, ReadsStandardInputWhereverAFileIsNamed) {
  const TestTelevision folder;
  folder.WriteFile("input.json", R"({"tv": {"latency_ms": "long"}})");
  folder.WriteFile("faults", R"({"voice.begin": -5})");
  folder.WriteFile("message", "{\n}\n");
  ASSERT_EQ("exit code 0", Describe(RunProgram(ORVEX_TESTSOUND_PROGRAM, {folder.PathOf("sound.wav").string()}).ending));
  const std::string directory = folder.GetDirectory().string();
  const StandardInputCase rows[] = {
      {"input.json", ORVEX_TV_PROGRAM " run --room -", "-: \"tv.latency_ms\" is \"long\""},
      {"faults", ORVEX_TV_PROGRAM " run --faults -", "-: \"voice.begin\": -5: expected a known operation"},
      {"message", ORVEX_TV_PROGRAM " send --tv " + directory + " -", "messages.sock: no service listens"},
      {"sound.wav", ORVEX_TESTSOUND_PROGRAM " --check -", "-: fit\n"},
      {"faults", ORVEX_TESTSOUND_PROGRAM " --check -", "-: "},
      {"sound.wav", ORVEX_SWEEP_PROGRAM " --rooms 1 --disturbance recording --recording -", "-: 2 channels of "},
      {"sound.wav", ORVEX_REPLAY_PROGRAM " -", "-: 2 channels, expected 1"},
  };
  for (const StandardInputCase& row : rows) {
    const ToolRun run =
        RunProgram("/bin/sh", {"-c", "cat '" + folder.PathOf(row.input).string() + "' | " + row.command});
    EXPECT_THAT(run.output + run.errors, HasSubstr(row.output)) << row.command;
    EXPECT_THAT(run.output + run.errors, Not(HasSubstr("/proc/"))) << row.command;
  }
}

}  // namespace
}  // namespace orvex::integration
