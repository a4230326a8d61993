// Runs that cannot go on, line by line: the remote, the device, a thread or the input fails.
#include "world/runs/golden_run.h"

namespace {

using orvex::runs::GoldenRun;
using orvex::runs::Heard;

class GoldenFailure : public GoldenRun {
protected:
  // The recorder has sent EXIT; it was started, but does not record.
  void ExpectBtFail() {
    golden.On("recorder").Add(R"(
E2 fail bt recoding
> SendEvent(10007)
)");
    golden.Exit();
    ExpectDestroyWithoutRecording("bt_fail");
  }
  void ExpectDestroyWithoutRecording(const std::string& terminate) {
    golden.On("main").Add(R"(
I0 Destroy
> settings_unsubscribe("db/device-detector-service/optical_change_flag") = 0
)");
    golden.SendEndRecord({"fail", 100, terminate}).Add(R"(
I0 Stop Orvex[3]
I0 stop BT Recoder
> pthread_join()
E2 Already ready state!!
I0 stop Sound Player
I0 Sound Player is not started
> ecore_timer_del()
I0 ${}
> FwAlarm::Destroy()
> ~FwAlarm()
)");
    ExpectGolden();
  }
};

TEST_F(GoldenFailure, ARemoteThatRefusesIsAskedOnce) {
  run.world.answers.Always("bt_hid_send_rc_command", -5);
  RunToEnd();
  golden.ProgramStart().Create().StartSync().StartRecorder().RecorderAsks().Add(R"(
> bt_hid_set_audio_data_receive_cb() = 0
> bt_hid_send_rc_command(null, 05 00, 2) = -5
E2 Fail to start bt audio [ret = -5]
)");
  ExpectBtFail();
}

TEST_F(GoldenFailure, ARemoteThatIsBusyIsAskedFiveTimes) {
  run.world.answers.Always("bt_hid_send_rc_command", -115);
  RunToEnd();
  golden.ProgramStart().Create().StartSync().StartRecorder().RecorderAsks().Add(
      "> bt_hid_set_audio_data_receive_cb() = 0");
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
  run.world.answers.Always("bt_hid_set_audio_data_receive_cb", -19);
  RunToEnd();
  golden.ProgramStart().Create().StartSync().StartRecorder().RecorderAsks().Add(R"(
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
  golden.ProgramStart().Create().StartSync().Add(R"(
E0 pEvent.type 10004
I0 ORVEX_START_BT_RECODING
I0 Start Orvex[1]
I0 start BT Recoder
> pthread_create() = 11
E2 pthread_create FAIL 1st!!
> usleep(100000)
)");
  golden.At(100).Add(R"(
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
  golden.ProgramStart().Create().StartSync().Add(R"(
E0 pEvent.type 10004
I0 ORVEX_START_BT_RECODING
I0 Start Orvex[1]
I0 start BT Recoder
> pthread_create() = 11
E2 pthread_create FAIL 1st!!
> usleep(100000)
)");
  golden.At(100).Add(R"(
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
  golden.UntilRecording().Blocks(1, 34).LastAmbientBlock().On("main").Add(R"(
E0 pEvent.type 10002
I0 ORVEX_PLAY_INAUDIBLE_SOUND
I0 Start Orvex[2]
I0 start Sound Player
I0 start Player ${}
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
  golden.Blocks(36, 40).At(10000).On("main").Add(R"(
I0 ${}
> SendEvent(10007)
)");
  golden.Exit().Add(R"(
I0 Destroy
> settings_unsubscribe("db/device-detector-service/optical_change_flag") = 0
)");
  golden.SendEndRecord({}).Add(R"(
I0 Stop Orvex[3]
I0 stop BT Recoder
> pthread_join()
> bt_hid_unset_audio_data_receive_cb() = 0
> bt_hid_rc_stop_sending_voice(null) = 0
E0 Stop bt audio
I0 stop Sound Player
E2 already thread stop
I0 Destroy
> snd_pcm_drop() = 0
I0 Done drop
> snd_pcm_close() = 0
I0 Done close
I0 ${}
> FwAlarm::Destroy()
> ~FwAlarm()
)");
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
  golden.At(golden.WritesEndMs());
  golden.PlayerIsCancelled();
  ExpectGolden();
}

}  // namespace
