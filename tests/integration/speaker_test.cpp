// The speaker's mute and the master volume during a run and afterwards.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

struct SpeakerCase {
  const char* name;
  bool isMuted;
  const char* speaker;  // selection
  const char* faults;
  int muteMeanwhile;
  int volumeMeanwhile;
  int muteAfterwards;
};

constexpr SpeakerCase kRows[] = {
    {"audible", false, "2", "{}", 0, 40, 0},
    {"muted, TV speaker selected", true, "0", "{}", 0, 0, 0},
    {"muted, another output selected", true, "2", "{}", 0, 0, 1},
    {"muted, a selection below 0", true, "-1", "{}", 0, 0, 1},
    {"muted, selection unreadable", true, "2", R"({"sound.get_speaker": -1})", 0, 0, 0},
    {"muted, but that cannot be read", true, "2", R"({"sound.get_mute": -1})", 1, 40, 1},
};

void NoteAndEnd(ServiceRun& run) {
  run.Note("mute " + std::to_string(run.GetTelevision().Get("sound/mute")) + ", volume " +
           std::to_string(run.GetTelevision().Get("sound/volume")));
  run.Signal(SIGTERM);
}

Scenario ScenarioOf(const SpeakerCase& row) {
  return {row.name,
          [row](const TestTelevision& television) {
            television.Set("sound/mute", row.isMuted ? "1" : "0");
            television.Set("sound/volume", "40");
            television.Set("sound/speaker", row.speaker);
            television.SetFaults(row.faults);
            television.SetRoom(RoomWithoutBlocks());
          },
          {{kIsRecording, NoteAndEnd}},
          {}};
}

TEST(Speaker, IsAudibleAtVolumeZeroMeanwhileAndAsBeforeAfterwards) {
  std::vector<ExpectedRun> runs;
  for (const SpeakerCase& row : kRows) {
    Expectation expectation = EndedWith("etc");
    expectation.mute = row.muteAfterwards;
    expectation.volume = 40;
    runs.push_back({ScenarioOf(row), expectation});
  }
  const std::vector<Observation> observations = PerformAndCheck(runs);
  for (std::size_t n = 0; n < observations.size(); ++n) {
    const SpeakerCase& row = kRows[n];
    EXPECT_EQ(Lines{"mute " + std::to_string(row.muteMeanwhile) + ", volume " + std::to_string(row.volumeMeanwhile)},
              observations[n].notes)
        << row.name;
  }
}

// The muted speaker is heard by the run, so that it finds the difference.
TEST(Speaker, AMutedOneIsHeardByTheRunAndMutedAgain) {
  const Observation observation =
      Perform({"muted", Both(WithValue("sound/mute", "1"), WithValue("sound/speaker", "1")), {}, {}});
  Expectation expectation = DifferenceApplied();
  expectation.mute = 1;
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
