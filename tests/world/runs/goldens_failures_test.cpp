// Runs that cannot go on, line by line: the remote, the device, a thread or the input fails.
#include "orvex/platform/remote_voice.h"
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;
using orvex::runs::Heard;

class GoldenFailure : public GoldenRun {
protected:
  void ExpectUntilTheRecorderAsks() { golden.ProgramStart().Create().StartSync().StartRecorder().RecorderAsks(); }
  // The recorder has sent EXIT; it was started, but does not record.
  void ExpectBtFail() {
    golden.On("recorder").Add(R"(
E2 fail bt recoding
> SendEvent(10007)
)");
    golden.Exit().Destroy({{Recorder::kFailed}, {"fail", 100, "bt_fail"}});
    ExpectGolden();
  }
  // The second try comes 100 ms later.
  void ExpectUntilTheSecondTryAtAThread() {
    golden.ProgramStart().Create().StartSync().StartRecorder(11).Add(R"(
E2 pthread_create FAIL 1st!!
> usleep(100000)
)");
    golden.At(100);
  }
};

TEST_F(GoldenFailure, ARemoteThatRefusesIsAskedOnce) {
  run.world.answers.Always("bt_hid_send_rc_command", kVoiceRefused);
  RunToEnd();
  ExpectUntilTheRecorderAsks();
  golden.Add(R"(
> bt_hid_set_audio_data_receive_cb() = 0
> bt_hid_send_rc_command(null, 05 00, 2) = -5
E2 Fail to start bt audio [ret = -5]
)");
  ExpectBtFail();
}

TEST_F(GoldenFailure, ARemoteThatIsBusyIsAskedFiveTimes) {
  run.world.answers.Always("bt_hid_send_rc_command", kVoiceInProgress);
  RunToEnd();
  ExpectUntilTheRecorderAsks();
  golden.Add("> bt_hid_set_audio_data_receive_cb() = 0");
  for (int attempt = 1; attempt <= 4; ++attempt) {
    golden.Add(R"(
> bt_hid_send_rc_command(null, 05 00, 2) = -115
E2 Fail bt_hid_send_rc_command [ret = -115]
> usleep(50000)
)");
    golden.At(50.0 * attempt);
  }
  golden.Add(R"(
> bt_hid_send_rc_command(null, 05 00, 2) = -115
E2 Fail to start bt audio [ret = -115]
)");
  ExpectBtFail();
}

TEST_F(GoldenFailure, ARefusedReceiverAsksTheRemoteNothing) {
  run.world.answers.Always("bt_hid_set_audio_data_receive_cb", kVoiceNoRemote);
  RunToEnd();
  ExpectUntilTheRecorderAsks();
  golden.Add(R"(
> bt_hid_set_audio_data_receive_cb() = -19
E2 [ERROR] Fail bt_hid_set_audio_data_receive_cb()
)");
  ExpectBtFail();
}

TEST_F(GoldenFailure, AThreadThatCannotBeCreatedIsTriedAgain) {
  run.world.answers.Next("pthread_create", {11});
  remote.EndAfter(0);
  AtMs(200, [this] { run.Terminate(); });
  RunToEnd();
  ExpectUntilTheSecondTryAtAThread();
  golden.Add(R"(
> pthread_create() = 0
E0 Create Thread Success at 2nd time
)");
  golden.RecorderRuns().At(200).On("main").Add("* termination");
  golden.Destroy({kRecorder, {}});
  ExpectGolden();
}

TEST_F(GoldenFailure, AThreadThatCannotBeCreatedTwiceEndsTheRun) {
  run.world.answers.Always("pthread_create", 11);
  RunToEnd();
  ExpectUntilTheSecondTryAtAThread();
  golden.Add(R"(
> pthread_create() = 11
E2 pthread_create FAIL 2nd!!
E2 Assertion failed
E2 fail bt recoding
> ui_app_exit()
)");
  golden.Destroy({kNobody, {}});
  ExpectGolden();
}

TEST_F(GoldenFailure, ADeviceThatCannotBeOpenedEndsTheRunAsPlayFail) {
  run.world.answers.Always("snd_pcm_open", -16);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 34).LastAmbientBlock().AskForSound().Add(R"(
> snd_pcm_open("hw:0,8", playback, 0) = -16
E2 Assertion failed
E2 fail to play wave
E2 fail to play sound
> ui_app_exit()
)");
  golden.Destroy({kRecorder, {"fail", 100, "play_fail"}});
  ExpectGolden();
}

TEST_F(GoldenFailure, AWorkerThatCannotBeStartedRunsIntoTheTimeLimit) {
  run.world.answers.Always("ecore_thread_run", 0);
  remote.EndAfter(40);
  RunToEnd();
  golden.UntilRecording().Blocks(1, 34).LastAmbientBlock().StartSound().Add("E2 Assertion failed");
  golden.Blocks(36, 40).At(10000);
  golden.AskForExit().Exit().Destroy({{Recorder::kRecording, Sound::kFailed}, {}, false});
  ExpectGolden();
}

TEST_F(GoldenFailure, TheEleventhNoisyToneEndsTheRunAsAbnormal) {
  for (int block = 40; block <= 50; ++block) {
    remote.Hear(block, Heard::kNoisy19kHz);
  }
  RunToEnd();
  golden.UntilPlaying().Blocks(36, 39);
  for (int block = 40; block <= 50; ++block) {
    golden.NoisyTone19(block, block - 39);
  }
  golden.Add(R"(
E2 ERROR occured. Exit service
E2 by abnormal input
I0 m_OnAbnomalStatusCallback
> SendEvent(10007)
)");
  golden.Exit().Destroy({kBoth, {"fail", 100, "abnormal_input_fail"}});
  ExpectRestOfTheSound();
}

}  // namespace
