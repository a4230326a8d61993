// Switching the remote's microphone on and off: commands, order of steps, busy remotes, refusals.
#include "orvex/platform/remote_voice.h"
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using orvex::world::Lane;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kReadDelay[] = {"> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0",
                                      "E0 spdif out delay = 100", "> avoc_get_delay(1) = 0",
                                      "E0 main out delay = 0, avoc delay = 100"};

class ReceiverCapture : public ReceiverTest {
protected:
  // Everything that a start does after it has saved the delay.
  Texts StartOfVoice() {
    CSingleton<CDebugDump>::GetInstance()->Stop();
    Texts texts = During([&] { receiver.StartBTRecoder(); });
    EXPECT_GE(texts.size(), std::size(kReadDelay));
    for (const char* text : kReadDelay) {
      EXPECT_EQ(texts.front(), text);
      texts.erase(texts.begin());
    }
    return texts;
  }
};

TEST_F(ReceiverCapture, AStartSavesTheDelayRegistersSwitchesTheMicrophoneOnAndOpensTheDump) {
  EXPECT_FALSE(receiver.IsRecording());
  EXPECT_THAT(StartOfVoice(),
              ElementsAre("> bt_hid_set_audio_data_receive_cb() = 0", "> bt_hid_send_rc_command(null, 05 00, 2) = 0",
                          "E0 Start bt audio recorder", "I0 CDebugDumpImplFile start",
                          StartsWith("E0 Temp file name=[/tmp/audio_dump_")));
  EXPECT_TRUE(receiver.IsRecording());
  EXPECT_EQ(world.voiceUserData, &receiver);
}

TEST_F(ReceiverCapture, BlocksCountOnceTheStartIsToldAndBeforeTheDumpOpens) {
  std::vector<bool> recording;
  world.journal.onAdd = [&] {
    const std::string& text = world.journal.Entries().back().text;
    if (text == "E0 Start bt audio recorder" || text == "I0 CDebugDumpImplFile start") {
      recording.push_back(receiver.IsRecording());
    }
  };
  receiver.StartBTRecoder();
  EXPECT_THAT(recording, ElementsAre(false, true));
}

TEST_F(ReceiverCapture, TheHearableSetIsStartedWithItsOwnCommand) {
  receiver.SetHearable(true);
  EXPECT_THAT(StartOfVoice(), Contains("> bt_hid_send_rc_command(null, 04 00, 2) = 0"));
  receiver.SetHearable(false);
  receiver.StopBTRecoder();
  EXPECT_THAT(StartOfVoice(), Contains("> bt_hid_send_rc_command(null, 05 00, 2) = 0"));
}

TEST_F(ReceiverCapture, ASecondStartIsRefusedAndLeavesTheCountersAlone) {
  Start();
  BeQuietUntil(8);
  EXPECT_THAT(During([&] { receiver.StartBTRecoder(); }), ElementsAre("E2 Already recording in progress!!"));
  EXPECT_TRUE(receiver.IsRecording());
  EXPECT_EQ(receiver.GetBufferCount(), 7);
  EXPECT_EQ(receiver.GetBlockIndex(), 3);
}

TEST_F(ReceiverCapture, AStopUnregistersBeforeItStopsTheVoice) {
  Start();
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }),
              ElementsAre("> bt_hid_unset_audio_data_receive_cb() = 0", "> bt_hid_rc_stop_sending_voice(null) = 0",
                          "E0 Stop bt audio"));
  EXPECT_FALSE(receiver.IsRecording());
}

TEST_F(ReceiverCapture, AStopOfAReadyReceiverCallsNobody) {
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }), ElementsAre("E2 Already ready state!!"));
  Start();
  receiver.StopBTRecoder();
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }), ElementsAre("E2 Already ready state!!"));
}

TEST_F(ReceiverCapture, AReceiverThatIsDestroyedWhileItRecordsStopsTheRemote) {
  {
    OrvexReceiver shortLived{OrvexReceiverCallbacks{}};
    shortLived.StartBTRecoder();
    world.journal.Clear();
  }
  EXPECT_THAT(world.journal.Texts(), ElementsAre("> bt_hid_unset_audio_data_receive_cb() = 0",
                                                 "> bt_hid_rc_stop_sending_voice(null) = 0", "E0 Stop bt audio"));
}

TEST_F(ReceiverCapture, AFailedRegistrationSendsNoCommand) {
  for (const int error : {kVoiceTaken, kVoiceInProgress, 1}) {
    world.answers.Next("bt_hid_set_audio_data_receive_cb", {error});
    EXPECT_THAT(StartOfVoice(), ElementsAre("> bt_hid_set_audio_data_receive_cb() = " + std::to_string(error),
                                            "E2 [ERROR] Fail bt_hid_set_audio_data_receive_cb()"));
    EXPECT_FALSE(receiver.IsRecording());
  }
}

TEST_F(ReceiverCapture, AFailedUnregistrationIsToldAndTheVoiceIsStoppedAllTheSame) {
  Start();
  world.answers.Next("bt_hid_unset_audio_data_receive_cb", {kVoiceNoRemote});
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }),
              ElementsAre("> bt_hid_unset_audio_data_receive_cb() = -19",
                          "E2 [ERROR] Fail bt_hid_unset_audio_data_receive_cb()",
                          "> bt_hid_rc_stop_sending_voice(null) = 0", "E0 Stop bt audio"));
}

TEST_F(ReceiverCapture, BlocksThatComeBeforeTheRemoteHasAcceptedAreIgnored) {
  world.answers.Next("bt_hid_send_rc_command", {kVoiceInProgress});
  world.scheduler.At(std::chrono::milliseconds(20), Lane::kElsewhere, [&] { EXPECT_TRUE(world.Deliver(quiet)); });
  bool acceptedYet = false;
  world.onCall = [&](const std::string& text) {
    acceptedYet = acceptedYet || (text == "bt_hid_send_rc_command(null, 05 00, 2) = 0" && receiver.IsRecording());
  };
  EXPECT_THAT(StartOfVoice(),
              ElementsAre("> bt_hid_set_audio_data_receive_cb() = 0", "> bt_hid_send_rc_command(null, 05 00, 2) = -115",
                          "E2 Fail bt_hid_send_rc_command [ret = -115]", "> usleep(50000)", "I0 m_ReceiveBTAudioDataCB",
                          "> bt_hid_send_rc_command(null, 05 00, 2) = 0", "E0 Start bt audio recorder",
                          "I0 CDebugDumpImplFile start", StartsWith("E0 Temp file name=[")));
  world.onCall = nullptr;
  EXPECT_FALSE(acceptedYet);
  EXPECT_EQ(receiver.GetBufferCount(), 0);
}

TEST_F(ReceiverCapture, BlocksThatAreUnderWayWhileTheReceiverStopsAreIgnored) {
  Start();
  const std::vector<std::uint8_t> bytes = LittleEndian(quiet);
  const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
  world.onCall = [&](const std::string& text) {
    if (text.find("bt_hid_unset_audio_data_receive_cb") == 0) {
      EXPECT_FALSE(receiver.IsRecording());
      OrvexReceiver::m_ReceiveBTAudioDataCB(&record, &receiver);
    }
  };
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }),
              ElementsAre("> bt_hid_unset_audio_data_receive_cb() = 0", "I0 m_ReceiveBTAudioDataCB",
                          "> bt_hid_rc_stop_sending_voice(null) = 0", "E0 Stop bt audio"));
  EXPECT_THAT(During([&] { OrvexReceiver::m_ReceiveBTAudioDataCB(nullptr, &receiver); }),
              ElementsAre("I0 m_ReceiveBTAudioDataCB"));
  EXPECT_EQ(receiver.GetBufferCount(), 0);
  EXPECT_EQ(DumpedAudio(), "");
}

TEST_F(ReceiverCapture, ARecordingAfterARefusedStopWorks) {
  Start();
  world.answers.Next("bt_hid_rc_stop_sending_voice", {kVoiceRefused});
  receiver.StopBTRecoder();
  EXPECT_FALSE(receiver.IsRecording());
  Start();
  EXPECT_THAT(Hear(quiet), ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 1"));
}

// The remote's answers to a command and its repetitions, the number of pauses between them, and whether it accepts.
struct Answers {
  const char* name;
  std::vector<long> answers;
  int pauses;
  bool accepted;
};

void PrintTo(const Answers& row, std::ostream* out) {
  *out << row.name;
}

class RemoteAnswers : public ReceiverCapture, public testing::WithParamInterface<Answers> {
protected:
  // The calls, and the lines of the failures after which the receiver tries again.
  static Texts Attempts(const std::string& call, const std::string& busyLine) {
    Texts texts;
    for (const long answer : GetParam().answers) {
      const bool last = texts.size() == 3 * static_cast<std::size_t>(GetParam().pauses);
      texts.push_back("> " + call + " = " + std::to_string(answer));
      if (!last) {
        texts.push_back("E2 " + busyLine + " [ret = " + std::to_string(answer) + "]");
        texts.emplace_back("> usleep(50000)");
      }
    }
    return texts;
  }
  static std::string LastAnswer() { return std::to_string(GetParam().answers.back()); }
  double ElapsedMs() const { return std::chrono::duration<double, std::milli>(world.scheduler.Now()).count(); }
};

TEST_P(RemoteAnswers, DecideWhetherTheMicrophoneGoesOn) {
  world.answers.Next("bt_hid_send_rc_command", GetParam().answers);
  Texts expected = Attempts("bt_hid_send_rc_command(null, 05 00, 2)", "Fail bt_hid_send_rc_command");
  expected.insert(expected.begin(), "> bt_hid_set_audio_data_receive_cb() = 0");
  Texts seen = StartOfVoice();
  if (GetParam().accepted) {
    expected.insert(expected.end(), {"E0 Start bt audio recorder", "I0 CDebugDumpImplFile start"});
    seen.pop_back();  // the names of the files
  } else {
    expected.push_back("E2 Fail to start bt audio [ret = " + LastAnswer() + "]");
  }
  EXPECT_THAT(seen, ElementsAreArray(expected));
  EXPECT_EQ(receiver.IsRecording(), GetParam().accepted);
  EXPECT_EQ(ElapsedMs(), 50.0 * GetParam().pauses);
}

TEST_P(RemoteAnswers, DecideWhatAStopTells) {
  Start();
  world.answers.Next("bt_hid_rc_stop_sending_voice", GetParam().answers);
  Texts expected = Attempts("bt_hid_rc_stop_sending_voice(null)", "Fail bt_hid_rc_stop_sending_voice()");
  expected.insert(expected.begin(), "> bt_hid_unset_audio_data_receive_cb() = 0");
  expected.push_back(GetParam().accepted ? "E0 Stop bt audio"
                                         : "E2 Fail to stop bt audio [ret = " + LastAnswer() + "]");
  EXPECT_THAT(During([&] { receiver.StopBTRecoder(); }), ElementsAreArray(expected));
  EXPECT_FALSE(receiver.IsRecording());
  EXPECT_EQ(ElapsedMs(), 50.0 * GetParam().pauses);
}

INSTANTIATE_TEST_SUITE_P(
    Receiver, RemoteAnswers,
    testing::Values(Answers{"AtOnce", {kVoiceDone}, 0, true},
                    Answers{"BusyOnce", {kVoiceInProgress, kVoiceDone}, 1, true},
                    Answers{
                        "BusyThreeTimes", {kVoiceInProgress, kVoiceInProgress, kVoiceInProgress, kVoiceDone}, 3, true},
                    Answers{"BusyFourTimes",
                            {kVoiceInProgress, kVoiceInProgress, kVoiceInProgress, kVoiceInProgress, kVoiceDone},
                            4,
                            true},
                    Answers{"BusyForEver",
                            {kVoiceInProgress, kVoiceInProgress, kVoiceInProgress, kVoiceInProgress, kVoiceInProgress},
                            4,
                            false},
                    Answers{"Refused", {kVoiceRefused}, 0, false}, Answers{"NotConnected", {kVoiceNoRemote}, 0, false},
                    Answers{"AlmostInProgress", {-114}, 0, false}, Answers{"BeyondInProgress", {-116}, 0, false},
                    Answers{"Positive", {115}, 0, false},
                    Answers{"BusyThenRefused", {kVoiceInProgress, kVoiceInProgress, kVoiceRefused}, 2, false},
                    Answers{"BusyThenPositive", {kVoiceInProgress, 1}, 1, false}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
