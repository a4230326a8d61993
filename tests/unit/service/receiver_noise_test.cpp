// Tones that do not stand out of their neighbours are counted as noise; too many of them are abnormal.
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::SizeIs;

constexpr const char* kSigns = "I0 ###################################################";
constexpr const char* kError = "E2 ERROR occured. Exit service";
constexpr const char* kAbnormal = "E2 by abnormal input";
constexpr const char* kAbnormalCallback = "> abnormal status";

class ReceiverNoise : public ReceiverTest {
protected:
  // Tones with much of a neighbour frequency.
  const Samples noisy17 = Block({100.0, 0.0, 60.0, 30.0, 0.0, 0.0});
  const Samples noisy19 = Block({30.0, 60.0, 0.0, 100.0, 0.0, 0.0});

  std::string Noise17(int count) const {
    return Text("I0 noise is high / %Lf / %d", LevelsOf(noisy17).Ratio17(), count);
  }
  // The line about a 19 kHz tone has the ratio of 17 kHz, too.
  std::string Noise19(int count) const {
    return Text("I0 noise value is too high/ %Lf / %d", LevelsOf(noisy19).Ratio17(), count);
  }
};

TEST_F(ReceiverNoise, ANoisyToneIsToldAndCountedAndBeginsNoPair) {
  ASSERT_LT(LevelsOf(noisy17).Ratio17(), 5);
  ASSERT_LT(LevelsOf(noisy19).Ratio19(), 5);
  Start();
  EXPECT_THAT(EventsAt(40, noisy17), ElementsAre(Found17(40, noisy17), kSigns, Noise17(1)));
  EXPECT_THAT(EventsAt(41, noisy19), ElementsAre(Found19(41, noisy19), kSigns, Noise19(2)));
  EXPECT_EQ(receiver.GetNoiseCount(), 2);
  EXPECT_EQ(receiver.GetDirection(), 0);
  EXPECT_EQ(receiver.GetSoundType(), 1);
}

TEST_F(ReceiverNoise, ANoisySecondToneEndsNoPair) {
  Start();
  EventsAt(40, Tone17(100));
  EXPECT_THAT(EventsAt(41, noisy19), ElementsAre(Found19(41, noisy19), kSigns, Noise19(1)));
  EXPECT_THAT(EventsAt(42, Tone19(100)), Contains("I0 @ [RESULT] [40] - [42] : 0.0330 s\n"));
}

TEST_F(ReceiverNoise, From11NoisyTonesOf19kHzOnEachOneIsAbnormal) {
  Start();
  for (int count = 1; count <= 10; ++count) {
    EXPECT_THAT(EventsAt(39 + count, noisy19), ElementsAre(Found19(39 + count, noisy19), kSigns, Noise19(count)));
    EXPECT_EQ(receiver.GetSoundType(), 1);
  }
  for (int count = 11; count <= 13; ++count) {
    EXPECT_THAT(EventsAt(39 + count, noisy19), ElementsAre(Found19(39 + count, noisy19), kSigns, Noise19(count), kError,
                                                           kAbnormal, kAbnormalCallback));
    EXPECT_EQ(receiver.GetSoundType(), 0);
  }
  EXPECT_TRUE(receiver.IsRecording());
}

TEST_F(ReceiverNoise, NoisyTonesOf17kHzNeverStopTheRun) {
  Start();
  for (int count = 1; count <= 25; ++count) {
    EXPECT_THAT(EventsAt(39 + count, noisy17), ElementsAre(Found17(39 + count, noisy17), kSigns, Noise17(count)));
    EXPECT_EQ(receiver.GetSoundType(), count <= 10 ? 1 : 0);
  }
}

TEST_F(ReceiverNoise, NoisyTonesOfBothFrequenciesCountTogether) {
  Start();
  for (int buffer = 40; buffer < 50; ++buffer) {
    EventsAt(buffer, noisy17);
  }
  EXPECT_THAT(EventsAt(50, noisy19),
              ElementsAre(Found19(50, noisy19), kSigns, Noise19(11), kError, kAbnormal, kAbnormalCallback));
}

TEST_F(ReceiverNoise, TheProgressIsGoneBeforeTheOwnerIsTold) {
  Start();
  int progress = -1;
  world.onCall = [&](const std::string& text) {
    progress = text == "abnormal status" ? receiver.GetSoundType() : progress;
  };
  for (int buffer = 40; buffer <= 50; ++buffer) {
    EventsAt(buffer, noisy19);
  }
  world.onCall = nullptr;
  EXPECT_EQ(progress, 0);
}

TEST_F(ReceiverNoise, ACleanToneAfterAbnormalInputBeginsAPair) {
  for (const bool lowFirst : {true, false}) {
    Start();
    for (int buffer = 40; buffer <= 50; ++buffer) {
      EventsAt(buffer, noisy19);
    }
    ASSERT_EQ(receiver.GetSoundType(), 0);
    EventsAt(51, lowFirst ? Tone17(100) : Tone19(100));
    EXPECT_EQ(receiver.GetDirection(), lowFirst ? 1 : -1);
    EXPECT_EQ(receiver.GetSoundType(), 1);
    EXPECT_THAT(EventsAt(52, lowFirst ? Tone19(100) : Tone17(100)), Contains("> end of calculation"));
    receiver.StopBTRecoder();
  }
}

// A tone whose ratio to its neighbours is just at or above 5.0 if `clean`, else just below.
Samples ToneNearTheLimit(bool of17kHz, bool clean) {
  for (double neighbour = 300.0; neighbour < 500.0; neighbour += 0.1) {
    Samples tone =
        of17kHz ? Block({1000.0, 0.0, neighbour, 0.0, 0.0, 0.0}) : Block({0.0, 0.0, neighbour, 1000.0, 0.0, 0.0});
    const long double ratio = of17kHz ? LevelsOf(tone).Ratio17() : LevelsOf(tone).Ratio19();
    if (clean ? ratio >= 5.0L && ratio < 5.005L : ratio < 5.0L && ratio > 4.995L) {
      return tone;
    }
  }
  ADD_FAILURE() << "no such tone";
  return Click(1);
}

TEST_F(ReceiverNoise, ATone5TimesAboveItsNeighboursIsClean) {
  for (const bool of17kHz : {true, false}) {
    Start();
    EXPECT_THAT(EventsAt(40, ToneNearTheLimit(of17kHz, false)), Contains(kSigns));
    EXPECT_EQ(receiver.GetDirection(), 0);
    EXPECT_THAT(EventsAt(41, ToneNearTheLimit(of17kHz, true)), Not(Contains(kSigns)));
    EXPECT_EQ(receiver.GetDirection(), of17kHz ? 1 : -1);
    receiver.StopBTRecoder();
  }
}

TEST_F(ReceiverNoise, BothNeighboursCount) {
  for (const ToneMix& sound : {ToneMix{100.0, 60.0, 0.0, 0.0, 0.0, 0.0}, ToneMix{100.0, 0.0, 60.0, 0.0, 0.0, 0.0}}) {
    Start();
    EXPECT_THAT(EventsAt(40, Block(sound)), Contains(kSigns));
    receiver.StopBTRecoder();
  }
}

}  // namespace
