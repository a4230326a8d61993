// A sound that is asked for while the one before, though stopped, is still written: they never meet on the device.
#include <signal.h>

#include <gmock/gmock.h>

#include <algorithm>

#include "Application/OrvexEventId.h"
#include "integration/expectation.h"

namespace orvex::integration {
namespace {

struct OverlapCase {
  const char* name;
  std::vector<Step> steps;  // once the first sound is written
  int sounds;               // that are begun
  const char* terminate;
};

Step StopAt(const std::string& line) {
  return InjectAt(line, ORVEX_STOP_INAUDIBLE_SOUND);
}
Step PlayAt(const std::string& line) {
  return InjectAt(line, ORVEX_PLAY_INAUDIBLE_SOUND);
}

const std::vector<OverlapCase> kRows = {
    {"stopped, asked for", {StopAt(kIsPlaying), PlayAt("cancel_thread")}, 2, "diff_fail"},
    {"twice",
     {StopAt(kIsPlaying), PlayAt("cancel_thread"), StopAt("start Player "), PlayAt("already thread stop")},
     2,
     "diff_fail"},
    {"given up again",
     {StopAt(kIsPlaying), PlayAt("cancel_thread"), StopAt("start Player "),
      SignalAt("m_OnCancelWavPlayCallback", SIGTERM)},
     1,
     "etc"},
    {"the run ends meanwhile",
     {StopAt(kIsPlaying), PlayAt("cancel_thread"), InjectAt("start Player ", ORVEX_EXIT)},
     1,
     "etc"},
    {"a signal ends it meanwhile",
     {StopAt(kIsPlaying), PlayAt("cancel_thread"), SignalAt("start Player ", SIGTERM)},
     1,
     "etc"},
    {"the measurement ends meanwhile",
     {StopAt(kIsPlaying), PlayAt("cancel_thread"), InjectAt("start Player ", ORVEX_END_SYNC),
      InjectAt("no_diff_detected!!{s}", ORVEX_FINISH_BT_RECODING), PlayAt("BT Recoder is not started"),
      StopAt("start Player "), InjectAt("stop Sound Player", ORVEX_EXIT)},
     1,
     "diff_fail"},
};

// The most sounds that were written at the same time.
int MostAtOnce(const std::vector<LogLine>& lines) {
  int now = 0;
  int most = 0;
  for (const LogLine& line : lines) {
    if (line.text == kIsPlaying) {
      most = std::max(most, ++now);
    } else if (line.text == "m_CancelPlayCB" || line.text == "m_EndPlayerCB") {
      --now;
    }
  }
  return most;
}

TEST(Overlap, ASoundFollowsTheStoppedOneAndTheSpeakerComesBack) {
  std::vector<Scenario> scenarios;
  for (const OverlapCase& row : kRows) {
    const auto prepare = [](const TestTelevision& television) {
      television.SetRoom(RoomWithoutOpticalSound());
      television.Set("sound/mute", "1");
      television.Set("sound/volume", "40");
      television.Set("sound/speaker", "2");
    };
    scenarios.push_back({row.name, prepare, row.steps, WithInjection()});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < kRows.size(); ++n) {
    const Observation& observation = observations[n];
    SCOPED_TRACE(observation.name);
    EXPECT_EQ("", observation.problem);
    CheckEnding(observation);
    CheckLogForm(observation);
    EXPECT_EQ(kRows[n].sounds, CountOf(observation.lines, kIsPlaying));
    EXPECT_EQ(1, MostAtOnce(observation.lines));
    EXPECT_EQ(CountOf(observation.lines, "snd_pcm_open hw:0,8 successed handle {s}"),
              CountOf(observation.lines, "Done close"));
    EXPECT_EQ(1, observation.mute);
    EXPECT_EQ(40, observation.volume);
    EXPECT_EQ(100, observation.delayMs);
    const Lines records = EndRecordsOf(observation);
    ASSERT_FALSE(records.empty());
    EXPECT_THAT(records.back(), testing::StartsWith("{result=fail;delay=100;du="));
    EXPECT_THAT(records.back(), testing::EndsWith(std::string(";terminate=") + kRows[n].terminate + "}"));
  }
}

}  // namespace
}  // namespace orvex::integration
