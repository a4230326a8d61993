// The receiver with the hearable setting: progress by buffer number, no tone detection.
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ReceiverHearable : public ReceiverTest {
protected:
  ReceiverHearable() { receiver.SetHearable(true); }
};

TEST_F(ReceiverHearable, ProgressIsReportedAtBuffers15And25AndTheAmbienceIsLearntAllTheSame) {
  Start();
  int progress = 0;
  for (int buffer = 5; buffer <= 60; ++buffer) {
    const Texts events = EventsAt(buffer, quiet);
    if (buffer == 15) {
      EXPECT_THAT(events, ElementsAre("I0 (ruvo) Hearable Set - m_SoundType 1"));
      progress = 1;
    } else if (buffer == 25) {
      EXPECT_THAT(events, ElementsAre("I0 (ruvo) Hearable Set - m_SoundType 2"));
      progress = 2;
    } else if (buffer == 35) {
      EXPECT_THAT(events, ElementsAre("E0 completed ambient noise", "> end of ambient noise"));
      progress = 1;
    } else {
      EXPECT_THAT(events, IsEmpty()) << buffer;
    }
    EXPECT_EQ(receiver.GetSoundType(), progress) << buffer;
  }
  EXPECT_TRUE(
      world.journal.Has("I0 55 / 4.000000 4.000000 4.000000 4.000000 / 1.000000 1.000000 / "
                        "4.000000 4.000000 4.000000 4.000000"));
}

TEST_F(ReceiverHearable, TheLevelsAreToldBeforeTheProgress) {
  Start();
  BeQuietUntil(15);
  EXPECT_THAT(Hear(quiet),
              ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 15", testing::StartsWith("I0 10 / 4.000000 "),
                          "I0 (ruvo) Hearable Set - m_SoundType 1"));
}

TEST_F(ReceiverHearable, TonesAreNotLookedFor) {
  Start();
  EXPECT_THAT(EventsAt(40, Tone17(100)), IsEmpty());
  EXPECT_THAT(EventsAt(41, Tone19(100)), IsEmpty());
  EXPECT_THAT(EventsAt(42, Block({100.0, 0.0, 100.0, 0.0, 0.0, 0.0})), IsEmpty());
  EXPECT_EQ(receiver.GetNoiseCount(), 0);
}

TEST_F(ReceiverHearable, ALostBlock15IsNoProgress) {
  Start();
  BeQuietUntil(15);
  HearRecord(nullptr);
  EXPECT_EQ(receiver.GetSoundType(), 0);
  EXPECT_THAT(EventsAt(16, quiet), IsEmpty());
}

TEST_F(ReceiverHearable, TheSettingTakesEffectWithTheNextBlock) {
  Start();
  const Samples tone = Tone17(100);
  EXPECT_THAT(EventsAt(40, tone), IsEmpty());
  receiver.SetHearable(false);
  EXPECT_THAT(EventsAt(41, tone), ElementsAre(Found17(41, tone), "I0   ====> @ g_first index \n"));
  receiver.SetHearable(true);
  EXPECT_THAT(EventsAt(42, Tone19(100)), IsEmpty());
}

TEST_F(ReceiverHearable, WithoutItBuffers15And25AreNothingSpecial) {
  receiver.SetHearable(false);
  Start();
  EXPECT_THAT(EventsAt(15, quiet), IsEmpty());
  EXPECT_THAT(EventsAt(25, quiet), IsEmpty());
  EXPECT_EQ(receiver.GetSoundType(), 0);
}

}  // namespace
