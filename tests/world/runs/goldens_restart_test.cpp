// Restarts, line by line: granted while the remote records and after it was stopped, and refused.
#include "Application/OrvexEventId.h"
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;

constexpr double kRestartMs = 200;

class GoldenRestart : public GoldenRun {
protected:
  void AskAtMs(double milliseconds, long delayMs) {
    AtMs(milliseconds, [this, delayMs] {
      run.ChangeDelay(static_cast<std::uint32_t>(delayMs));
      run.SendServiceEvent(ORVEX_RESTART_BT_RECODING);
    });
  }
  void ExpectAskedAtMs(double milliseconds, long delayMs) {
    golden.At(milliseconds).On("main").Set("delay", delayMs).Add(R"(
* delay ${delay}
* event 10005
)");
    golden.AskForRestart(delayMs);
  }
  void ExpectStartOfARunningRecorder() {
    golden.Event(10004, "I0 ORVEX_START_BT_RECODING").Add(R"(
I0 Start Orvex[1]
I0 start BT Recoder
I0 BT Recoder already started
)");
  }
  void ExpectRefused() {
    golden.On("main").Add(R"(
E2 no need to retry sync
> ui_app_exit()
)");
  }
};

TEST_F(GoldenRestart, GrantedWhileTheRemoteRecordsTakesTheNewBaseAndTime) {
  AskAtMs(kRestartMs, 80);
  remote.HearThreeBuffersLate();
  RunToEnd();
  golden.UntilRecording().Blocks(1, 10);
  ExpectAskedAtMs(kRestartMs, 80);
  golden.GrantRestart();
  ExpectStartOfARunningRecorder();
  golden.Blocks(11, 34).LastAmbientBlock().StartSound().Worker();
  ExpectThreeBuffersLate();
  ExpectApplied("0.0495", {"pass", 31, "done"});
}

TEST_F(GoldenRestart, AfterTheRecordingWasFinishedRecordsAnew) {
  AtMs(100, [this] { run.SendServiceEvent(ORVEX_FINISH_BT_RECODING); });
  AskAtMs(kRestartMs, 80);
  AtMs(300, [this] { run.Terminate(); });
  RunToEnd();
  golden.UntilRecording().Blocks(1, 4).At(100).On("main").Add("* event 10006");
  golden.Event(10006, "I0 ORVEX_FINISH_BT_RECODING").Add("I0 Stop Orvex[1]");
  golden.StopRecorder();
  ExpectAskedAtMs(kRestartMs, 80);
  golden.GrantRestart().StartRecorder().RecorderRuns().Blocks(1, 4).At(300).On("main").Add("* termination");
  golden.Destroy({kRecorder, {"fail", 80, "etc"}});
  ExpectGolden();
}

TEST_F(GoldenRestart, RefusedWithAnUnchangedDelayEndsTheRun) {
  AskAtMs(kRestartMs, 100);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 10);
  ExpectAskedAtMs(kRestartMs, 100);
  ExpectRefused();
  golden.Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenRestart, RefusedWithADelayOfZeroEndsTheRun) {
  AskAtMs(kRestartMs, 0);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 10);
  ExpectAskedAtMs(kRestartMs, 0);
  ExpectRefused();
  golden.Destroy({kRecorder, {"fail", 0, "etc"}});
  ExpectGolden();
}

TEST_F(GoldenRestart, GrantedTwiceIsRefusedTheThirdTime) {
  AskAtMs(100, 90);
  AskAtMs(150, 80);
  AskAtMs(kRestartMs, 70);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 4);
  ExpectAskedAtMs(100, 90);
  golden.GrantRestart();
  ExpectStartOfARunningRecorder();
  golden.Blocks(5, 7);
  ExpectAskedAtMs(150, 80);
  golden.GrantRestart();
  ExpectStartOfARunningRecorder();
  golden.Blocks(8, 10);
  ExpectAskedAtMs(kRestartMs, 70);
  ExpectRefused();
  golden.Destroy({kRecorder, {"fail", 70, "etc"}});
  ExpectGolden();
}

}  // namespace
