// Runs that end by themselves, line by line: a difference found and applied, and none found.
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;
using orvex::runs::Heard;
using orvex::runs::RunGolden;

class GoldenDifference : public GoldenRun {
protected:
  // The 17 kHz tone in buffer 50, the 19 kHz tone in buffer 53: 49 ms of the delay of 100 ms are taken away.
  void HearThreeBuffersLate() {
    remote.Hear(50, Heard::k17kHz);
    remote.Hear(53, Heard::k19kHz);
  }
  RunGolden& ExpectTones() { return golden.Blocks(36, 49).FirstTone17(50).Blocks(51, 52).SecondTone19(53, 50); }
  void ExpectDone(Consent consent) {
    const EndRecord record{"pass", 51, "done", consent};
    golden.EndSync(kBoth, "0.0495", record).Exit().Destroy({kNobody, record});
    golden.At(golden.WritesEndMs());
    golden.PlayerIsCancelled();
    ExpectGolden();
  }
};

TEST_F(GoldenDifference, IsAppliedWhileNobodyHasAgreed) {
  HearThreeBuffersLate();
  RunToEnd();
  golden.UntilPlaying();
  ExpectTones();
  ExpectDone(Consent::kMissing);
}

TEST_F(GoldenDifference, IsAppliedAndReportedWithConsent) {
  run.world.settings[orvex::runs::kConsentKey] = 1;
  HearThreeBuffersLate();
  RunToEnd();
  golden.UntilPlaying(Speaker::kAudible, Consent::kGiven);
  ExpectTones();
  ExpectDone(Consent::kGiven);
}

TEST_F(GoldenDifference, IsReportedFromTheStartWhenConsentComesMeanwhile) {
  HearThreeBuffersLate();
  AtMs(700, [this] { run.Consent(1); });
  RunToEnd();
  golden.UntilPlaying();
  golden.At(700);
  golden.ConsentChanges(Consent::kGiven);
  ExpectTones();
  ExpectDone(Consent::kGiven);
}

TEST_F(GoldenDifference, StaysKeptWhenTheChangeOfConsentIsARefusal) {
  HearThreeBuffersLate();
  AtMs(700, [this] { run.Consent(0); });
  RunToEnd();
  golden.UntilPlaying();
  golden.At(700);
  golden.ConsentChanges(Consent::kMissing);
  ExpectTones();
  ExpectDone(Consent::kMissing);
}

TEST_F(GoldenDifference, OfAnOpticalOutputThatIsEarlyLengthensTheDelay) {
  remote.Hear(50, Heard::k19kHz);
  remote.Hear(54, Heard::k17kHz);
  RunToEnd();
  const EndRecord record{"pass", 166, "done"};
  golden.UntilPlaying().Blocks(36, 49).FirstTone19(50).Blocks(51, 53).SecondTone17(54, 50);
  golden.EndSync(kBoth, "-0.0660", record).Exit().Destroy({kNobody, record});
  golden.At(golden.WritesEndMs());
  golden.PlayerIsCancelled();
  ExpectGolden();
}

TEST_F(GoldenDifference, GreaterThanTheDelayMakesItZero) {
  run.world.delayMs = 30;
  HearThreeBuffersLate();
  RunToEnd();
  golden.Set("delay", 30);
  golden.UntilPlaying();
  ExpectTones();
  const EndRecord record{"pass", 0, "done"};
  golden.EndSync(kBoth, "0.0495", record).Exit().Destroy({kNobody, record});
  golden.At(golden.WritesEndMs());
  golden.PlayerIsCancelled();
  ExpectGolden();
}

TEST_F(GoldenDifference, IsMissingWhenTheSoundEndsWithoutAPair) {
  remote.Hear(50, Heard::k17kHz);
  RunToEnd();
  const EndRecord record{"fail", 100, "diff_fail"};
  golden.UntilPlaying().Blocks(36, 49).FirstTone17(50).Blocks(51, 59);
  golden.At(golden.WritesEndMs());
  golden.PlayerEnds().EndSync(kRecorderAndEndedSound, "0.0000", record).Exit().Destroy({kNobody, record});
  ExpectGolden();
}

TEST_F(GoldenDifference, IsAppliedOnlyWhenARemoteThatIsSlowToStopHasStopped) {
  HearThreeBuffersLate();
  run.world.answers.Next("bt_hid_rc_stop_sending_voice", {-115, -115, -115});
  RunToEnd();
  golden.UntilPlaying();
  ExpectTones().On("main").Add(R"(
E0 pEvent.type 10001
I0 ORVEX_END_SYNC
I0 Stop Orvex[3]
I0 stop BT Recoder
> pthread_join()
> bt_hid_unset_audio_data_receive_cb() = 0
)");
  const double stopMs = golden.Now();
  for (int attempt = 1; attempt <= 3; ++attempt) {
    golden.Add(R"(
> bt_hid_rc_stop_sending_voice(null) = -115
E2 Fail bt_hid_rc_stop_sending_voice() [ret = -115]
> usleep(50000)
)");
    golden.At(stopMs + 50.0 * attempt);
  }
  golden.Add(R"(
> bt_hid_rc_stop_sending_voice(null) = 0
E0 Stop bt audio
I0 stop Sound Player
I0 cancel_thread
> ecore_thread_cancel()
)");
  const EndRecord record{"pass", 51, "done"};
  golden.ApplyDifference("0.0495", record).Exit().Destroy({kNobody, record});
  // The sound ended while the main loop waited for the remote.
  golden.PlayerIsCancelled();
  ExpectGolden();
}

}  // namespace
