// A speaker that was muted, line by line: what the run asks of the sound manager and what it leaves behind.
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;

constexpr char kMutedAgain[] = R"(
I0 need to restore volume. original mute value[1]
> sound_manager_get_speaker_selection() = 0
I0 current speaker [1]
> sound_manager_set_device_mute(0, true) = 0
I0 original volume value[15]
> sound_manager_set_tv_master_volume(15) = 0
)";
constexpr char kLeftAudible[] = R"(
I0 need to restore volume. original mute value[1]
> sound_manager_get_speaker_selection() = 0
I0 current speaker [0]
I0 original volume value[15]
> sound_manager_set_tv_master_volume(15) = 0
)";
constexpr char kVolumeOnly[] = R"(
I0 original volume value[15]
> sound_manager_set_tv_master_volume(15) = 0
)";

class GoldenSpeaker : public GoldenRun {
protected:
  GoldenSpeaker() { run.world.muted = true; }
  void ExpectLeft(bool muted) {
    EXPECT_EQ(run.world.muted, muted);
    EXPECT_EQ(run.world.volume, 15);
    ExpectGolden();
  }
};

TEST_F(GoldenSpeaker, IsMutedAgainWhenAnotherOutputIsSelected) {
  run.world.speaker = 1;
  AtMs(300, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording(Speaker::kMuted).Blocks(1, 16).At(300).On("main").Add("* termination");
  golden.Destroy({kRecorder, {}, true, kMutedAgain});
  ExpectLeft(true);
}

TEST_F(GoldenSpeaker, StaysAudibleWhenItIsSelected) {
  run.world.speaker = 0;
  AtMs(300, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording(Speaker::kMuted).Blocks(1, 16).At(300).On("main").Add("* termination");
  golden.Destroy({kRecorder, {}, true, kLeftAudible});
  ExpectLeft(false);
}

TEST_F(GoldenSpeaker, StaysAudibleAfterTheOpticalFlag) {
  run.world.speaker = 1;
  AtMs(300, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  golden.UntilRecording(Speaker::kMuted).Blocks(1, 16).At(300).On("main").Add(R"(
* optical flag
I0 ${}
> SendEvent(10007)
)");
  golden.Exit().Destroy({kRecorder, {}, true, kVolumeOnly});
  ExpectLeft(false);
}

TEST_F(GoldenSpeaker, IsMutedAgainAfterARunThatEndsByItself) {
  run.world.speaker = 1;
  RunToEnd();
  const EndRecord record{"fail", 100, "diff_fail"};
  golden.UntilPlaying(Speaker::kMuted).Blocks(36, 59).At(golden.WritesEndMs());
  golden.PlayerEnds()
      .EndSync(kRecorderAndEndedSound, "0.0000", record)
      .Exit()
      .Destroy({kNobody, record, true, kMutedAgain});
  ExpectLeft(true);
}

}  // namespace
