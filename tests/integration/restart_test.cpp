// Events from outside: restarts of a run, and the others that the service never sends itself.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

constexpr int kStop = 10003;
constexpr int kRestart = 10005;
constexpr int kFinish = 10006;
constexpr char kIsRestarted[] = "BT Recoder already started";

// The delay is changed by hand, then a restart is asked for.
Step RestartAt(const std::string& line, const std::string& delayMs) {
  return {line, [line, delayMs](ServiceRun& run) {
            run.GetTelevision().Set("delay/spdif", delayMs);
            InjectAt(line, kRestart).act(run);
          }};
}

ExpectedLog& Asked(ExpectedLog& log, const std::string& delayMs) {
  return log.Event(kRestart, "ORVEX_RESTART_BT_RECODING").Add({"I check retry"}).SetDelay(delayMs).DelayRead();
}

ExpectedLog& Granted(ExpectedLog& log, const std::string& delayMs) {
  return Asked(log, delayMs).Clock().RecorderAsked().Add({"I BT Recoder already started"});
}

ExpectedLog& Refused(ExpectedLog& log, const std::string& delayMs) {
  return Asked(log, delayMs).Add({"F no need to retry sync"}).Destroyed();
}

struct Row {
  const char* name;
  Lines delays;  // at each request
  bool isLastRefused;
};

ExpectedLog LogOf(const Row& row) {
  ExpectedLog log;
  log.UpToRecording();
  for (std::size_t n = 0; n < row.delays.size(); ++n) {
    const bool isRefused = row.isLastRefused && n + 1 == row.delays.size();
    isRefused ? Refused(log, row.delays[n]) : Granted(log, row.delays[n]);
  }
  return row.isLastRefused ? log : log.Playing().EndedWithDifference().Exit().Destroyed().WorkerCancelled();
}

Scenario ScenarioOf(const Row& row) {
  Scenario scenario{row.name, [](const TestTelevision&) {}, {}, WithInjection()};
  if (row.isLastRefused) {
    scenario.prepare = WithRoom(RoomWithoutBlocks());
  }
  for (std::size_t n = 0; n < row.delays.size(); ++n) {
    scenario.steps.push_back(RestartAt(n == 0 ? kIsRecording : kIsRestarted, row.delays[n]));
  }
  return scenario;
}

TEST(Restart, IsGrantedTwiceAndOnlyForANewDelayThatIsNotZero) {
  const std::vector<Row> rows{
      {"granted once", {"120"}, false},
      {"granted twice", {"120", "140"}, false},
      {"third", {"120", "140", "160"}, true},
      {"delay unchanged", {"100"}, true},
      {"unchanged since the first", {"120", "120"}, true},
      {"delay 0", {"0"}, true},
  };
  std::vector<Scenario> scenarios;
  for (const Row& row : rows) {
    scenarios.push_back(ScenarioOf(row));
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < rows.size(); ++n) {
    Expectation expectation;
    expectation.runLines = LogOf(rows[n]).GetLines();
    expectation.terminate = rows[n].isLastRefused ? "etc" : "done";
    expectation.result = rows[n].isLastRefused ? "fail" : "pass";
    expectation.endRecords = rows[n].isLastRefused ? 1 : 2;
    expectation.baseMs = std::stoll(rows[n].delays.back());
    expectation.delayMs = rows[n].isLastRefused ? std::optional<std::int64_t>(expectation.baseMs) : std::nullopt;
    Check(observations[n], expectation);
    EXPECT_EQ(Lines(rows[n].delays.size(), "{}"), observations[n].notes) << rows[n].name;
  }
}

// The recording is finished by hand, then begun anew: a second pair of files, and a run from its beginning.
TEST(Restart, AfterAFinishedRecordingBeginsASecondOne) {
  const Observation observation = Perform({"finished and restarted",
                                           [](const TestTelevision&) {},
                                           {InjectAt("buffer: 6", kFinish), RestartAt("Stop bt audio", "120")},
                                           WithInjection()});
  ExpectedLog log;
  log.UpToRecording()
      .Event(kFinish, "ORVEX_FINISH_BT_RECODING")
      .Add({"I Stop Orvex[1]", "I stop BT Recoder", "E Stop bt audio"});
  Asked(log, "120").Clock().RecorderAsked().RecorderThread().Recording();
  log.Playing().EndedWithDifference().Exit().Destroyed().WorkerCancelled();
  SCOPED_TRACE(observation.name);
  CheckEnding(observation);
  CheckLogForm(observation);
  CheckBlocks(observation);
  EXPECT_EQ("", Difference(LinesOf(observation.lines, Theme::kRun), log.GetLines()));
  EXPECT_EQ(DelayFor(120, MeasuredDifferenceS(observation)), observation.delayMs);
  EXPECT_FALSE(observation.dump.empty());
  EXPECT_FALSE(observation.secondDump.empty());
  EXPECT_EQ("", observation.result);
}

TEST(Restart, AStoppedSoundIsPlayedOutAndAnUnknownEventIsPassedOver) {
  const Observation observation = Perform({"stopped",
                                           WithRoom(RoomWithoutOpticalSound()),
                                           {InjectAt(kIsPlaying, kStop), InjectAt("cancel_thread", 12345),
                                            InjectAt("other event", 10008), SignalAt("other event", SIGTERM)},
                                           WithInjection()});
  Expectation expectation;
  expectation.runLines = ExpectedLog()
                             .UpToPlaying()
                             .Event(kStop, "ORVEX_STOP_INAUDIBLE_SOUND")
                             .SoundStopped()
                             .Add({"E pEvent.type 12345", "F other event", "E pEvent.type 10008", "F other event"})
                             .Destroyed()
                             .WorkerCancelled()
                             .GetLines();
  expectation.terminate = "etc";
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
