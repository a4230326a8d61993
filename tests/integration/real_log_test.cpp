// A real process against the golden journals of runs in virtual time: this computer's Ecore, libasound and threads lead
// the service through the same lines as their stand-ins do.
#include <signal.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "integration/expectation.h"
#include "world/runs/golden_steps.h"

namespace orvex::integration {
namespace {

using runs::RunGolden;

constexpr RunGolden::Workers kRecorder{RunGolden::Recorder::kRecording, RunGolden::Sound::kNotStarted};
constexpr RunGolden::Workers kBoth{RunGolden::Recorder::kRecording, RunGolden::Sound::kWritten};
constexpr RunGolden::Workers kEndedSound{RunGolden::Recorder::kRecording, RunGolden::Sound::kEnded};

int SoundFrames() {
  constexpr std::uintmax_t kHeaderBytes = 44;
  constexpr std::uintmax_t kFrameBytes = 4;
  const std::filesystem::path sound = std::filesystem::path(ORVEX_BUILT_ROOT) /
                                      "usr/apps/com.norvel.tv.orvex-service/res/sound/LR_test_sample_17_19.wav";
  return static_cast<int>((std::filesystem::file_size(sound) - kHeaderBytes) / kFrameBytes);
}

// The television of the golden journals, with this room.
Scenario ScenarioIn(const char* name, const sim::RoomConfig& room) {
  const auto prepare = [room](const TestTelevision& television) {
    for (const auto& [value, text] :
         {std::pair("tv/brand", "acme"), std::pair("tv/device_type", "3"), std::pair("tv/source", "5"),
          std::pair("tv/resolution", "7"), std::pair("tv/frequency", "60"), std::pair("tv/codec", "2")}) {
      television.Set(value, text);
    }
    television.SetRoom(room);
  };
  return {name, prepare, {}, {}};
}

// The golden journal's log lines on these threads.
Lines LogLinesOf(const RunGolden& golden, const Lines& threads) {
  Lines patterns;
  for (const runs::Golden::Line& line : golden.Lines()) {
    const bool isLogLine = line.pattern.front() != '>' && line.pattern.front() != '*';
    if (isLogLine && std::find(threads.begin(), threads.end(), line.thread) != threads.end()) {
      patterns.push_back(line.pattern);
    }
  }
  return patterns;
}

// Threads interleave as they do; main loop and recorder take turns. The worker may be late, and write again.
void ExpectSameLines(const Observation& observation, const RunGolden& golden) {
  SCOPED_TRACE(observation.name);
  CheckEnding(observation);
  CheckLogForm(observation);
  EXPECT_EQ("", Difference(DescribedOfThreads(observation.lines, "mr"), LogLinesOf(golden, {"main", "recorder"})));
  Lines heard = DescribedOfThreads(observation.lines, "d");
  const Lines ambient = LogLinesOf(golden, {"delivery"});
  heard.resize(std::min(heard.size(), ambient.size()));
  EXPECT_EQ("", Difference(heard, ambient));
  Lines written = LogLinesOf(golden, {"worker"});
  written.erase(std::remove_if(written.begin(), written.end(),
                               [](const std::string& line) { return line.rfind("I0 write return", 0) == 0; }),
                written.end());
  EXPECT_EQ("", MissingInOrder(DescribedOfThreads(observation.lines, "w"), written));
}

class RealLog : public testing::Test {
protected:
  RealLog() { golden.InRealTime().SetNewInstances("I0 [singleton] new instance"); }

  RunGolden golden{[](int, double startMs) { return startMs; }, SoundFrames()};
};

TEST_F(RealLog, OfADifferenceWithConsentAndAMutedSpeakerIsTheGoldenOne) {
  Scenario scenario = ScenarioIn("difference", sim::RoomConfig());
  const auto prepare = scenario.prepare;
  scenario.prepare = [prepare](const TestTelevision& television) {
    prepare(television);
    television.Set("sound/mute", "1");
    television.Set("sound/speaker", "1");
  };
  const Observation observation = Perform(scenario);
  const RunGolden::EndRecord record{"pass", observation.delayMs, "done", RunGolden::Consent::kGiven};
  golden.UntilPlaying(RunGolden::Speaker::kMuted, RunGolden::Consent::kGiven);
  golden.EndSync(kBoth, "{f}", record).Exit();
  golden.Destroy({{}, record, true, RunGolden::Restored::kVolumeAndMute}).PlayerIsCancelled();
  ExpectSameLines(observation, golden);
}

TEST_F(RealLog, OfASoundThatEndsWithoutADifferenceIsTheGoldenOne) {
  Scenario scenario = ScenarioIn("no difference", RoomWithoutOpticalSound());
  const Observation observation = Perform(scenario);
  const RunGolden::EndRecord record{"fail", 100, "diff_fail", RunGolden::Consent::kGiven};
  golden.UntilPlaying(RunGolden::Speaker::kAudible, RunGolden::Consent::kGiven).PlayerEnds();
  golden.EndSync(kEndedSound, "0.0000", record).Exit().Destroy({{}, record});
  ExpectSameLines(observation, golden);
}

TEST_F(RealLog, OfARunThatASignalEndsIsTheGoldenOne) {
  Scenario scenario = ScenarioIn("signal", RoomWithoutBlocks());
  scenario.steps = {SignalAt(kIsRecording, SIGTERM)};
  const Observation observation = Perform(scenario);
  golden.UntilRecording(RunGolden::Speaker::kAudible, RunGolden::Consent::kGiven);
  golden.Destroy({kRecorder, {"fail", 100, "etc", RunGolden::Consent::kGiven}});
  ExpectSameLines(observation, golden);
}

}  // namespace
}  // namespace orvex::integration
