// A recording begins with nothing of the one before, except for the kind of sound that it listens for.
#include "orvex/platform/remote_voice.h"
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ReceiverRestart : public ReceiverTest {
protected:
  void StopAndStart() {
    receiver.StopBTRecoder();
    Start();
  }
};

TEST_F(ReceiverRestart, CountersLevelsAndResultStartAtZero) {
  Start();
  const Samples noisy = Block({40.0, 0.0, 40.0, 0.0, 0.0, 0.0});
  EventsAt(40, Tone17(100));
  EventsAt(50, Tone19(100));
  EventsAt(51, noisy);
  ASSERT_NE(receiver.GetAudioTimeDifference(), 0.0);
  ASSERT_EQ(receiver.GetNoiseCount(), 1);
  ASSERT_EQ(receiver.GetDirection(), 1);
  ASSERT_EQ(receiver.GetSoundType(), 1);

  StopAndStart();
  EXPECT_EQ(receiver.GetBufferCount(), 0);
  EXPECT_EQ(receiver.GetBlockIndex(), 0);
  EXPECT_EQ(receiver.GetNoiseCount(), 0);
  EXPECT_EQ(receiver.GetSoundType(), 0);
  EXPECT_EQ(receiver.GetDirection(), 0);
  EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
  BeQuietUntil(5);
  EXPECT_THAT(Hear(quiet), Contains("I0 0 / 4.000000 4.000000 4.000000 4.000000 / 1.000000 1.000000 / "
                                    "0.000000 0.000000 0.000000 0.000000"));
}

TEST_F(ReceiverRestart, TheFirstToneIsAFirstToneAgain) {
  Start();
  EventsAt(40, Tone17(100));
  StopAndStart();
  const Samples tone = Tone19(100);
  EXPECT_THAT(EventsAt(42, tone), ElementsAre(Found19(42, tone), "I0 @ g_first index (reverse)\n"));
}

TEST_F(ReceiverRestart, AStrongSecondToneOfThePastSetsNoFloor) {
  Start();
  EventsAt(40, Tone17(2000, 1000));
  StopAndStart();
  EventsAt(40, Tone17(100));
  EXPECT_THAT(EventsAt(45, Tone19(50)), Contains("> end of calculation"));

  StopAndStart();
  EventsAt(40, Tone19(2000, 1000));
  StopAndStart();
  EventsAt(40, Tone19(100));
  EXPECT_THAT(EventsAt(45, Tone17(50)), Contains("> end of calculation"));
}

TEST_F(ReceiverRestart, SecondTonesAreAcceptedAgain) {
  Start();
  receiver.SetFinished(true);
  StopAndStart();
  EventsAt(40, Tone17(100));
  EXPECT_THAT(EventsAt(45, Tone19(100)), Contains("> end of calculation"));
}

TEST_F(ReceiverRestart, TheExtendCommandIsDueAfter250BuffersAgain) {
  const std::string extend = "> bt_hid_send_rc_command(null, 03 10, 2) = 0";
  Start();
  LoseBlocksUntil(130);
  StopAndStart();
  for (int buffer = 1; buffer <= 250; ++buffer) {
    ASSERT_THAT(HearRecord(nullptr), Not(Contains(extend))) << buffer;
  }
  EXPECT_THAT(HearRecord(nullptr), Contains(extend));
}

TEST_F(ReceiverRestart, TheKindOfSoundStays) {
  receiver.SetHearable(true);
  Start();
  receiver.StopBTRecoder();
  CSingleton<CDebugDump>::GetInstance()->Stop();
  EXPECT_THAT(During([&] { receiver.StartBTRecoder(); }), Contains("> bt_hid_send_rc_command(null, 04 00, 2) = 0"));
  EXPECT_THAT(EventsAt(15, quiet), ElementsAre("I0 (ruvo) Hearable Set - m_SoundType 1"));
}

TEST_F(ReceiverRestart, TheLastResultIsForgottenFirstAndEvenWhenTheStartFails) {
  for (const char* failing : {"bt_hid_set_audio_data_receive_cb", "bt_hid_send_rc_command"}) {
    Start();
    EventsAt(40, Tone17(100));
    EventsAt(41, Tone19(100));
    receiver.StopBTRecoder();
    ASSERT_NE(receiver.GetAudioTimeDifference(), 0.0);
    bool forgotten = true;
    world.onCall = [&](const std::string&) { forgotten = forgotten && receiver.GetBufferCount() == 0; };
    world.answers.Next(failing, {kVoiceNoRemote});
    receiver.StartBTRecoder();
    world.onCall = nullptr;
    EXPECT_TRUE(forgotten);
    EXPECT_FALSE(receiver.IsRecording());
    EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
    EXPECT_EQ(receiver.GetDirection(), 0);
  }
}

}  // namespace
