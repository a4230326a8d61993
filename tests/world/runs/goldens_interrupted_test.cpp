// Runs that something from outside ends, line by line: the time limit, the optical change flag, a termination request.
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;

constexpr double kDuringAmbientMs = 300;
constexpr double kWhilePlayingMs = 700;  // 92 ms after the sound's start
constexpr char kAmbientDone[] = "E0 completed ambient noise";

class GoldenInterruption : public GoldenRun {
protected:
  // Nothing is destroyed but what runs; the sound is played to its end.
  void ExpectDestroyAndTheRestOfTheSound(bool timerRuns = true) {
    golden.Destroy({kBoth, {}, timerRuns});
    ExpectRestOfTheSound();
  }
  // What happens at the moment at which the ambient phase ends, on the delivery thread.
  void ExpectAtTheEndOfTheAmbientPhase(const std::string& what) {
    golden.Block(35).Add(kAmbientDone).Add(what).Add(R"(
I0 m_OnEndAmientNoiseCallback
> SendEvent(10002)
)");
  }
};

TEST_F(GoldenInterruption, TheTimeLimitEndsARunWhoseRemoteFellSilent) {
  remote.EndAfter(20);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 20).At(10000);
  golden.AskForExit().Exit().Destroy({kRecorder, {}, false});
  ExpectGolden();
}

TEST_F(GoldenInterruption, TheTimeLimitEndsARunThatPlays) {
  remote.DelayFrom(30, 9200);
  RunToEnd();
  golden.UntilPlaying().Blocks(36, 46).At(10000);
  golden.AskForExit().Exit();
  ExpectDestroyAndTheRestOfTheSound(false);
}

TEST_F(GoldenInterruption, TheOpticalFlagBeforeTheFirstBlock) {
  AtMs(10, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  golden.UntilRecording().At(10).On("main").Add("* optical flag");
  golden.AskForExit().Exit().Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenInterruption, TheOpticalFlagDuringTheAmbientPhase) {
  AtMs(kDuringAmbientMs, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  golden.UntilRecording().Blocks(1, 16).At(kDuringAmbientMs).On("main").Add("* optical flag");
  golden.AskForExit().Exit().Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenInterruption, TheOpticalFlagAtTheEndOfTheAmbientPhaseCancelsTheSoundBeforeItBegins) {
  run.After(kAmbientDone, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  golden.UntilRecording().Blocks(1, 34);
  ExpectAtTheEndOfTheAmbientPhase("* optical flag");
  golden.AskForExit();
  // EXIT was sent before the worker began.
  golden.StartSound().Exit().Destroy({kBoth, {}}).PlayerIsCancelled();
  ExpectGolden();
}

TEST_F(GoldenInterruption, TheOpticalFlagWhileTheSoundPlays) {
  AtMs(kWhilePlayingMs, [this] { run.SwitchOpticalFlag(); });
  RunToEnd();
  golden.UntilPlaying().Blocks(36, 40).At(kWhilePlayingMs).On("main").Add("* optical flag");
  golden.AskForExit().Exit();
  ExpectDestroyAndTheRestOfTheSound();
}

TEST_F(GoldenInterruption, ATerminationRequestBeforeTheFirstBlock) {
  AtMs(10, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording().At(10).On("main").Add("* termination");
  golden.Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenInterruption, ATerminationRequestDuringTheAmbientPhase) {
  AtMs(kDuringAmbientMs, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording().Blocks(1, 16).At(kDuringAmbientMs).On("main").Add("* termination");
  golden.Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenInterruption, ATerminationRequestAtTheEndOfTheAmbientPhaseKeepsTheSoundFromStarting) {
  run.After(kAmbientDone, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording().Blocks(1, 34);
  ExpectAtTheEndOfTheAmbientPhase("* termination");
  golden.Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenInterruption, ATerminationRequestWhileTheSoundPlays) {
  AtMs(kWhilePlayingMs, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilPlaying().Blocks(36, 40).At(kWhilePlayingMs).On("main").Add("* termination");
  ExpectDestroyAndTheRestOfTheSound();
}

}  // namespace
