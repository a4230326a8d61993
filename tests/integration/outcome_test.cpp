// How a run can end by itself: with a delay applied, without a difference, or without having been able to begin.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "integration/expectation.h"
#include "integration/noise.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::integration {
namespace {

constexpr double kLargestErrorMs = 17.0;  // one block of the microphone

struct DoneRow {
  const char* name;
  double differenceMs;
  int baseMs;
};

constexpr DoneRow kDone[] = {
    {"optical output late", 80.0, 140},
    {"optical output early", -90.0, 140},
    {"later than the delay can be shortened", 200.0, 60},
};

Scenario ScenarioOf(const DoneRow& row) {
  return {row.name,
          [row](const TestTelevision& television) {
            television.Set("delay/spdif", std::to_string(row.baseMs));
            television.SetRoom(RoomWithDifference(row.differenceMs, row.baseMs));
          },
          {},
          {}};
}

TEST(Outcome, AMeasuredDifferenceIsTakenOffTheDelay) {
  std::vector<ExpectedRun> runs;
  for (const DoneRow& row : kDone) {
    runs.push_back({ScenarioOf(row), DifferenceApplied(row.baseMs)});
  }
  const std::vector<Observation> observations = PerformAndCheck(runs);
  for (std::size_t n = 0; n < observations.size(); ++n) {
    EXPECT_NEAR(kDone[n].differenceMs, MeasuredDifferenceS(observations[n]) * 1000.0, kLargestErrorMs) << kDone[n].name;
  }
  EXPECT_EQ(0, observations[2].delayMs);
}

// The detector's magnitudes of a block, computed anew from the dump, are those of the log: these are its very bytes.
TEST(Outcome, TheDumpHoldsWhatTheDetectorHasHeard) {
  const Observation observation = Perform({"default room", LeaveAsItIs, {}, {}});
  CheckEnding(observation);
  CheckBlocks(observation);
  std::size_t compared = 0;
  for (const LogLine& line : observation.lines) {
    int index = 0;
    double at17000 = 0.0;
    double at19000 = 0.0;
    if (std::sscanf(line.text.c_str(), "%d / %lf %lf", &index, &at17000, &at19000) == 3) {
      const std::size_t block = static_cast<std::size_t>(index) + 4;
      EXPECT_NEAR(at17000, MagnitudeInDump(observation.dump, block, 17000.0), 1e-3) << "block " << block;
      EXPECT_NEAR(at19000, MagnitudeInDump(observation.dump, block, 19000.0), 1e-3) << "block " << block;
      ++compared;
    }
  }
  EXPECT_EQ(observation.dump.size() / kVoiceBlockBytes - 4, compared);
}

struct FailureRow {
  const char* name;
  Preparation prepare;
  const char* terminate;
  int endRecords;
};

sim::RoomConfig RoomWithoutSound() {
  sim::RoomConfig room = RoomWithoutOpticalSound();
  room.tv.gainDb = -200.0;
  return room;
}

// 19 kHz with as much 18 kHz, as from a device that whistles, once the ambient noise is learnt.
void AddWhistle(const TestTelevision& television) {
  WriteNoise(television.PathOf("whistle.wav").string(), {18000.0, 19000.0}, 0.65, 1.0);
  sim::RoomConfig room;
  room.noiseFile = "whistle.wav";
  television.SetRoom(room);
}

TEST(Outcome, ARunWithoutADifferenceLeavesTheDelayAlone) {
  const std::vector<FailureRow> rows{
      {"optical output silent", WithRoom(RoomWithoutOpticalSound()), "diff_fail", 2},
      {"both outputs silent", WithRoom(RoomWithoutSound()), "diff_fail", 2},
      {"whistling at 19 kHz", AddWhistle, "abnormal_input_fail", 1},
      {"remote refuses", WithFaults(R"({"voice.start": -5})"), "bt_fail", 1},
      {"remote stays busy", WithFaults(R"({"voice.start": -115})"), "bt_fail", 1},
      {"receiver refused", WithFaults(R"({"voice.register": -1})"), "bt_fail", 1},
      {"no sound device", WithFaults(R"({"pcm.open": -2})"), "play_fail", 1},
  };
  std::vector<ExpectedRun> runs;
  for (const FailureRow& row : rows) {
    runs.push_back({{row.name, row.prepare, {}, {}}, EndedWith(row.terminate, row.endRecords)});
  }
  PerformAndCheck(runs);
}

TEST(Outcome, ARemoteThatIsBusyFourTimesIsAskedAFifthTime) {
  const Observation observation =
      Perform({"busy remote", WithFaults(R"({"voice.start": [-115, -115, -115, -115]})"), {}, {}});
  Check(observation, DifferenceApplied());
  EXPECT_EQ(4, CountOf(observation.lines, "Fail bt_hid_send_rc_command [ret = -115]"));
  EXPECT_GE(TimeBetween(observation, "Fail bt_hid_send_rc_command{s}", "Start bt audio recorder").count(), 4 * 50);
}

}  // namespace
}  // namespace orvex::integration
