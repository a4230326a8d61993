// Runs that end by themselves, line by line: a difference found and applied, and none found.
#include "orvex/platform/remote_voice.h"
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;
using orvex::runs::Heard;

class GoldenDifference : public GoldenRun {
protected:
  static EndRecord Done(Consent consent) { return {"pass", 51, "done", consent}; }
  // While the sound plays, the user answers.
  void ExpectAppliedWhenConsentChanges(Consent consent) {
    remote.HearThreeBuffersLate();
    AtMs(700, [=] { run.Consent(consent == Consent::kGiven ? 1 : 0); });
    RunToEnd();
    golden.UntilPlaying().At(700);
    golden.ConsentChanges(consent);
    ExpectThreeBuffersLate();
    ExpectApplied("0.0495", Done(consent));
  }
};

TEST_F(GoldenDifference, IsAppliedWhileNobodyHasAgreed) {
  remote.HearThreeBuffersLate();
  RunToEnd();
  golden.UntilPlaying();
  ExpectThreeBuffersLate();
  ExpectApplied("0.0495", Done(Consent::kMissing));
}

TEST_F(GoldenDifference, IsAppliedAndReportedWithConsent) {
  run.world.settings[orvex::runs::kConsentKey] = 1;
  remote.HearThreeBuffersLate();
  RunToEnd();
  golden.UntilPlaying(Speaker::kAudible, Consent::kGiven);
  ExpectThreeBuffersLate();
  ExpectApplied("0.0495", Done(Consent::kGiven));
}

TEST_F(GoldenDifference, IsReportedFromTheStartWhenConsentComesMeanwhile) {
  ExpectAppliedWhenConsentChanges(Consent::kGiven);
}

TEST_F(GoldenDifference, StaysKeptWhenTheChangeOfConsentIsARefusal) {
  ExpectAppliedWhenConsentChanges(Consent::kMissing);
}

TEST_F(GoldenDifference, OfAnOpticalOutputThatIsEarlyLengthensTheDelay) {
  remote.Hear(50, Heard::k19kHz);
  remote.Hear(54, Heard::k17kHz);
  RunToEnd();
  golden.UntilPlaying().Blocks(36, 49).FirstTone19(50).Blocks(51, 53).SecondTone17(54, 50);
  ExpectApplied("-0.0660", {"pass", 166, "done"});
}

TEST_F(GoldenDifference, GreaterThanTheDelayMakesItZero) {
  run.world.delayMs = 30;
  remote.HearThreeBuffersLate();
  RunToEnd();
  golden.Set("delay", 30);
  golden.UntilPlaying();
  ExpectThreeBuffersLate();
  ExpectApplied("0.0495", {"pass", 0, "done"});
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
  remote.HearThreeBuffersLate();
  run.world.answers.Next("bt_hid_rc_stop_sending_voice", {kVoiceInProgress, kVoiceInProgress, kVoiceInProgress});
  RunToEnd();
  golden.UntilPlaying();
  ExpectThreeBuffersLate();
  golden.Event(10001, "I0 ORVEX_END_SYNC").Add(R"(
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
)");
  const EndRecord record = Done(Consent::kMissing);
  golden.StopSound().ApplyDifference("0.0495", record).Exit().Destroy({kNobody, record});
  // The sound ended while the main loop waited for the remote.
  golden.PlayerIsCancelled();
  ExpectGolden();
}

}  // namespace
