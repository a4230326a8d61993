// A speaker that was muted, line by line: what the run asks of the sound manager and what it leaves behind.
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;

class GoldenSpeaker : public GoldenRun {
protected:
  static constexpr double kEndMs = 300;

  GoldenSpeaker() { run.world.muted = true; }
  void ExpectUntilTheEndIsAskedFor(const std::string& how) {
    golden.UntilRecording(Speaker::kMuted).Blocks(1, 16).At(kEndMs).On("main").Add(how);
  }
  void ExpectTerminated(int selectedOutput, Restored restored) {
    run.world.speaker = selectedOutput;
    AtMs(kEndMs, [this] { run.Terminate(); });
    RunToEnd();
    ExpectUntilTheEndIsAskedFor("* termination");
    golden.Destroy({kRecorder, {}, true, restored});
  }
  void ExpectLeft(bool muted) {
    EXPECT_EQ(run.world.muted, muted);
    EXPECT_EQ(run.world.volume, 15);
    ExpectGolden();
  }
};

TEST_F(GoldenSpeaker, IsMutedAgainWhenAnotherOutputIsSelected) {
  ExpectTerminated(1, Restored::kVolumeAndMute);
  ExpectLeft(true);
}

TEST_F(GoldenSpeaker, StaysAudibleWhenItIsSelected) {
  ExpectTerminated(0, Restored::kVolumeOfSelected);
  ExpectLeft(false);
}

TEST_F(GoldenSpeaker, StaysAudibleAfterTheOpticalFlag) {
  run.world.speaker = 1;
  AtMs(kEndMs, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  ExpectUntilTheEndIsAskedFor("* optical flag");
  golden.AskForExit().Exit().Destroy({kRecorder, {}, true, Restored::kVolume});
  ExpectLeft(false);
}

TEST_F(GoldenSpeaker, IsMutedAgainAfterARunThatEndsByItself) {
  run.world.speaker = 1;
  RunToEnd();
  const EndRecord record{"fail", 100, "diff_fail"};
  golden.UntilPlaying(Speaker::kMuted).Blocks(36, 59).At(golden.WritesEndMs());
  golden.PlayerEnds().EndSync(kRecorderAndEndedSound, "0.0000", record).Exit();
  golden.Destroy({kNobody, record, true, Restored::kVolumeAndMute});
  ExpectLeft(true);
}

}  // namespace
