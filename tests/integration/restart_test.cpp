// Events from outside: restarts of a run, and the others that the service never sends itself.
#include <signal.h>

#include <gtest/gtest.h>

#include "Application/OrvexEventId.h"
#include "integration/expectation.h"

namespace orvex::integration {
namespace {

constexpr char kIsRestarted[] = "BT Recoder already started";

// The delay is changed by hand, then a restart is asked for.
Step RestartAt(const std::string& line, const std::string& delayMs) {
  return {line, [line, delayMs](ServiceRun& run) {
            run.GetTelevision().Set("delay/spdif", delayMs);
            InjectAt(line, ORVEX_RESTART_BT_RECODING).act(run);
          }};
}

struct RestartCase {
  const char* name;
  Lines delays;  // at each request
  bool isLastRefused;
};

Scenario ScenarioOf(const RestartCase& row) {
  Scenario scenario{row.name, LeaveAsItIs, {}, WithInjection()};
  if (row.isLastRefused) {
    scenario.prepare = WithRoom(RoomWithoutBlocks());
  }
  for (std::size_t n = 0; n < row.delays.size(); ++n) {
    scenario.steps.push_back(RestartAt(n == 0 ? kIsRecording : kIsRestarted, row.delays[n]));
  }
  return scenario;
}

TEST(Restart, IsGrantedTwiceAndOnlyForANewDelayThatIsNotZero) {
  const std::vector<RestartCase> rows{
      {"granted once", {"120"}, false},
      {"granted twice", {"120", "140"}, false},
      {"third", {"120", "140", "160"}, true},
      {"delay unchanged", {"100"}, true},
      {"unchanged since the first", {"120", "120"}, true},
      {"delay 0", {"0"}, true},
  };
  std::vector<ExpectedRun> runs;
  for (const RestartCase& row : rows) {
    const std::int64_t lastMs = std::stoll(row.delays.back());
    Expectation expectation = row.isLastRefused ? EndedWith("etc") : DifferenceApplied(lastMs);
    expectation.savedMs = 100;  // when the recording began
    if (row.isLastRefused) {
      expectation.delayMs = lastMs;
    }
    runs.push_back({ScenarioOf(row), expectation});
  }
  const std::vector<Observation> observations = PerformAndCheck(runs);
  for (std::size_t n = 0; n < rows.size(); ++n) {
    EXPECT_EQ(Lines(rows[n].delays.size(), "{}"), observations[n].notes) << rows[n].name;
  }
}

// The recording is finished by hand, then begun anew: a second pair of files, and a run from its beginning.
TEST(Restart, AfterAFinishedRecordingBeginsASecondOne) {
  const Observation observation =
      Perform({"finished and restarted",
               LeaveAsItIs,
               {InjectAt("buffer: 6", ORVEX_FINISH_BT_RECODING), RestartAt("Stop bt audio", "120")},
               WithInjection()});
  SCOPED_TRACE(observation.name);
  CheckEnding(observation);
  CheckLogForm(observation);
  CheckBlocks(observation);
  CheckDifferenceApplied(observation, 120);
  EXPECT_FALSE(observation.dump.empty());
  EXPECT_FALSE(observation.secondDump.empty());
  EXPECT_EQ("", observation.result);
}

TEST(Restart, AStoppedSoundIsPlayedOutAndAnUnknownEventIsPassedOver) {
  const Observation observation =
      Perform({"stopped",
               WithRoom(RoomWithoutOpticalSound()),
               {InjectAt(kIsPlaying, ORVEX_STOP_INAUDIBLE_SOUND), InjectAt("cancel_thread", 12345),
                InjectAt("other event", 10008), SignalAt("other event", SIGTERM)},
               WithInjection()});
  Check(observation, EndedWith("etc"));
}

}  // namespace
}  // namespace orvex::integration
