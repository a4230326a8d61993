// How a run can end by itself: with a delay applied, without a difference, or without having been able to begin.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "integration/expectation.h"
#include "integration/noise.h"

namespace orvex::integration {
namespace {

constexpr double kLargestErrorMs = 17.0;  // one block of the microphone

ExpectedLog Log(ExpectedTelevision television = {}) {
  return ExpectedLog(std::move(television)).Constructed().Created().SyncStarted().RecorderAsked().RecorderThread();
}

struct DoneRow {
  const char* name;
  double differenceMs;
  int baseMs;
  const char* firstTone;  // by what is logged of it
};

constexpr DoneRow kDone[] = {
    {"optical output late", 80.0, 140, "I   ====> @ g_first index \n"},
    {"optical output early", -90.0, 140, "I @ g_first index (reverse)\n"},
    {"later than the delay can be shortened", 200.0, 60, "I   ====> @ g_first index \n"},
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
  std::vector<Scenario> scenarios;
  std::transform(std::begin(kDone), std::end(kDone), std::back_inserter(scenarios), ScenarioOf);
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < observations.size(); ++n) {
    const DoneRow& row = kDone[n];
    ExpectedTelevision television;
    television.delay = std::to_string(row.baseMs);
    Expectation expectation;
    expectation.runLines =
        Log(television).Recording().Playing().EndedWithDifference().Exit().Destroyed().WorkerCancelled().GetLines();
    expectation.terminate = "done";
    expectation.result = "pass";
    expectation.endRecords = 2;
    expectation.delayMs = std::nullopt;
    expectation.baseMs = row.baseMs;
    expectation.savedMs = row.baseMs;
    Check(observations[n], expectation);
    SCOPED_TRACE(row.name);
    EXPECT_NEAR(row.differenceMs, MeasuredDifferenceS(observations[n]) * 1000.0, kLargestErrorMs);
    EXPECT_EQ("", MissingInOrder(
                      LinesOf(observations[n].lines, Theme::kDetection),
                      {"E completed ambient noise", "I m_OnEndAmientNoiseCallback", row.firstTone, "I *@ [RESULT] *",
                       "E completed calculation of delay", "I m_OnEndCalculationDiffCallback"}));
  }
  EXPECT_EQ(0, observations[2].delayMs);
}

// The detector's magnitudes of a block, computed anew from the dump, are those of the log: these are its very bytes.
TEST(Outcome, TheDumpHoldsWhatTheDetectorHasHeard) {
  const Observation observation = Perform({"default room", [](const TestTelevision&) {}, {}, {}});
  CheckEnding(observation);
  CheckBlocks(observation);
  std::size_t compared = 0;
  for (const std::string& line : LinesOf(observation.lines, Theme::kBlocks)) {
    int index = 0;
    double at17000 = 0.0;
    double at19000 = 0.0;
    if (std::sscanf(line.c_str(), "I %d / %lf %lf", &index, &at17000, &at19000) == 3) {
      const std::size_t block = static_cast<std::size_t>(index) + 4;
      EXPECT_NEAR(at17000, MagnitudeInDump(observation.dump, block, 17000.0), 1e-3) << "block " << block;
      EXPECT_NEAR(at19000, MagnitudeInDump(observation.dump, block, 19000.0), 1e-3) << "block " << block;
      ++compared;
    }
  }
  EXPECT_EQ(observation.dump.size() / 1536 - 4, compared);
}

struct FailureRow {
  const char* name;
  std::function<void(const TestTelevision&)> prepare;
  Lines runLines;
  const char* terminate;
  int endRecords;
  Lines detection;  // in order, with others in between
};

ExpectedLog PlayedInVain() {
  return Log().Recording().Playing().PlayedToItsEnd().EndedWithoutDifference().Exit().Destroyed();
}

ExpectedLog BusyRemote(int refusals) {
  return Log().Add(Lines(static_cast<std::size_t>(refusals), "F Fail bt_hid_send_rc_command [ret = -115]"));
}

ExpectedLog RecorderFailed(ExpectedLog log, const std::string& reason) {
  return log.Add({"F " + reason}).RecorderFailed().Exit().Destroyed();
}

ExpectedLog NothingToPlayOn() {
  return Log()
      .Recording()
      .Event(10002, "ORVEX_PLAY_INAUDIBLE_SOUND")
      .Add({"I Start Orvex[2]", "I start Sound Player", "I start Player ", "F Assertion failed", "F fail to play wave",
            "F fail to play sound"})
      .SetTermination("play_fail")
      .Destroyed();
}

Lines ElevenNoisyTones() {
  Lines lines;
  for (int n = 1; n <= 11; ++n) {
    lines.insert(lines.end(), {"I (ruvo_19k)[*] * s *, *\n", "I " + std::string(51, '#'),
                               "I noise value is too high/ * / " + std::to_string(n)});
  }
  lines.insert(lines.end(), {"F ERROR occured. Exit service", "F by abnormal input", "I m_OnAbnomalStatusCallback"});
  return lines;
}

void SilenceTheOpticalOutput(const TestTelevision& television) {
  television.SetRoom(RoomWithoutOpticalSound());
}

void SilenceBothOutputs(const TestTelevision& television) {
  sim::RoomConfig room = RoomWithoutOpticalSound();
  room.tv.gainDb = -200.0;
  television.SetRoom(room);
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
      {"optical output silent",
       SilenceTheOpticalOutput,
       PlayedInVain().GetLines(),
       "diff_fail",
       2,
       {"E completed ambient noise", "I   ====> @ g_first index \n"}},
      {"both outputs silent",
       SilenceBothOutputs,
       PlayedInVain().GetLines(),
       "diff_fail",
       2,
       {"E completed ambient noise"}},
      {"whistling at 19 kHz", AddWhistle,
       Log()
           .Recording()
           .Playing()
           .SetTermination("abnormal_input_fail")
           .Exit()
           .Destroyed()
           .WorkerCancelled()
           .GetLines(),
       "abnormal_input_fail", 1, ElevenNoisyTones()},
      {"remote refuses",
       WithFaults(R"({"voice.start": -5})"),
       RecorderFailed(Log(), "Fail to start bt audio [ret = -5]").GetLines(),
       "bt_fail",
       1,
       {}},
      {"remote stays busy",
       WithFaults(R"({"voice.start": -115})"),
       RecorderFailed(BusyRemote(4), "Fail to start bt audio [ret = -115]").GetLines(),
       "bt_fail",
       1,
       {}},
      {"receiver refused",
       WithFaults(R"({"voice.register": -1})"),
       RecorderFailed(Log(), "[ERROR] Fail bt_hid_set_audio_data_receive_cb()").GetLines(),
       "bt_fail",
       1,
       {}},
      {"no sound device",
       WithFaults(R"({"pcm.open": -2})"),
       NothingToPlayOn().GetLines(),
       "play_fail",
       1,
       {"E completed ambient noise"}},
  };
  std::vector<Scenario> scenarios;
  for (const FailureRow& row : rows) {
    scenarios.push_back({row.name, row.prepare, {}, {}});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < rows.size(); ++n) {
    Expectation expectation;
    expectation.runLines = rows[n].runLines;
    expectation.terminate = rows[n].terminate;
    expectation.endRecords = rows[n].endRecords;
    Check(observations[n], expectation);
    EXPECT_EQ("", MissingInOrder(LinesOf(observations[n].lines, Theme::kDetection), rows[n].detection)) << rows[n].name;
  }
  EXPECT_EQ("", MissingInOrder(LinesOf(observations[1].lines, Theme::kDetection), {})) << rows[1].name;
}

TEST(Outcome, ARemoteThatIsBusyFourTimesIsAskedAFifthTime) {
  const Observation observation =
      Perform({"busy remote", WithFaults(R"({"voice.start": [-115, -115, -115, -115]})"), {}, {}});
  Expectation expectation;
  expectation.runLines =
      BusyRemote(4).Recording().Playing().EndedWithDifference().Exit().Destroyed().WorkerCancelled().GetLines();
  expectation.terminate = "done";
  expectation.result = "pass";
  expectation.endRecords = 2;
  expectation.delayMs = std::nullopt;
  Check(observation, expectation);
  EXPECT_GE(TimeBetween(observation, "Fail bt_hid_send_rc_command*", "Start bt audio recorder").count(), 4 * 50);
}

}  // namespace
}  // namespace orvex::integration
