// The ambience of 30 blocks, and when a tone stands out of it.
#include <optional>

#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ReceiverDetection : public ReceiverTest {
protected:
  // Buffers 1 to 35 with this sound: the ambience is known.
  void LearnAmbience(const Samples& sound) {
    while (receiver.GetBufferCount() < 35) {
      Hear(sound);
    }
  }
};

TEST_F(ReceiverDetection, TheAmbienceIsTheMeanOfBlocks0To29AndIsReportedAtBlock30) {
  Start();
  BeQuietUntil(5);
  // Of 30 blocks the levels are 1, 2, … 30, the sum is 465.
  for (std::int16_t level = 1; level <= 30; ++level) {
    EXPECT_THAT(EventsAt(level + 4, Click(level)), IsEmpty());
    EXPECT_EQ(receiver.GetSoundType(), 0);
  }
  EXPECT_THAT(Hear(Click(8000)),
              ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 35",
                          "I0 30 / 8000.000000 8000.000000 8000.000000 8000.000000 / 1.000000 1.000000 / "
                          "465.000000 465.000000 465.000000 465.000000",
                          "E0 completed ambient noise", "> end of ambient noise"));
  EXPECT_EQ(receiver.GetSoundType(), 1);
  EXPECT_THAT(Hear(Click(8)), ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 36",
                                          "I0 31 / 8.000000 8.000000 8.000000 8.000000 / 1.000000 1.000000 / "
                                          "15.500000 15.500000 15.500000 15.500000"));
  EXPECT_EQ(receiver.GetBlockIndex(), 32);
}

TEST_F(ReceiverDetection, EveryFrequencyHasItsOwnPlaceInTheLine) {
  Start();
  BeQuietUntil(5);
  const Samples sound = Block({300.0, 200.0, 100.0, 400.0, 0.0, 0.0});
  const Levels levels = LevelsOf(sound);
  const std::string measured = Text("%Lf %Lf %Lf %Lf / %Lf %Lf / ", levels.at17000, levels.at19000, levels.at17500,
                                    levels.at18000, levels.Ratio17(), levels.Ratio19());
  Hear(sound);
  EXPECT_TRUE(world.journal.Has("I0 0 / " + measured + "0.000000 0.000000 0.000000 0.000000"));
  Hear(sound);
  EXPECT_TRUE(world.journal.Has(
      "I0 1 / " + measured + Text("%Lf %Lf %Lf %Lf", levels.at17000, levels.at19000, levels.at17500, levels.at18000)));
}

TEST_F(ReceiverDetection, ATonesFirstChanceIsBlock31) {
  for (const Samples& tone : {Tone17(100), Tone19(100)}) {
    Start();
    for (const int buffer : {5, 20, 34}) {
      EXPECT_THAT(EventsAt(buffer, tone), IsEmpty()) << buffer;
    }
    receiver.StopBTRecoder();
    Start();
    EXPECT_THAT(EventsAt(35, tone), ElementsAre("E0 completed ambient noise", "> end of ambient noise"));
    EXPECT_EQ(receiver.GetDirection(), 0);
    EXPECT_EQ(EventsAt(36, tone).size(), 2U);
    EXPECT_NE(receiver.GetDirection(), 0);
    receiver.StopBTRecoder();
  }
}

TEST_F(ReceiverDetection, AFirstToneIsToldWithItsBufferAndTime) {
  const Samples low = Tone17(100, 3);
  const Samples high = Tone19(100, 3);
  Start();
  EXPECT_THAT(EventsAt(100, low), ElementsAre(Found17(100, low), kFirst17));
  EXPECT_THAT(Found17(100, low), testing::StartsWith("I0 [100] 1.6500 s 38"));
  EXPECT_EQ(receiver.GetDirection(), 1);
  EXPECT_EQ(receiver.GetSoundType(), 1);
  receiver.StopBTRecoder();
  Start();
  EXPECT_THAT(EventsAt(100, high), ElementsAre(Found19(100, high), kFirst19));
  EXPECT_EQ(receiver.GetDirection(), -1);
  EXPECT_EQ(receiver.GetSoundType(), 1);
}

TEST_F(ReceiverDetection, AToneThatIsAlreadyFirstIsFoundAgainAndChangesNothing) {
  const Samples low = Tone17(100);
  const Samples high = Tone19(100);
  Start();
  EventsAt(100, low);
  EXPECT_THAT(EventsAt(101, low), ElementsAre(Found17(101, low)));
  EXPECT_THAT(EventsAt(119, high), Contains("I0 @ [RESULT] [100] - [119] : 0.3135 s\n"));
  receiver.StopBTRecoder();
  Start();
  EventsAt(100, high);
  EXPECT_THAT(EventsAt(101, high), ElementsAre(Found19(101, high)));
  EXPECT_THAT(EventsAt(119, low), Contains("I0 (ruvo)   ====> @ [RESULT] [119] - [100] : -0.3135 s\n"));
}

TEST_F(ReceiverDetection, ABlockWithBothFrequenciesEquallyStrongIsNoTone) {
  Start();
  EXPECT_THAT(EventsAt(40, Click(200)), IsEmpty());
  EXPECT_THAT(EventsAt(41, Click(32767)), IsEmpty());
}

TEST_F(ReceiverDetection, TheStrongerOfTwoTonesCounts) {
  Start();
  const Samples low = Tone17(301, 300);
  EXPECT_THAT(EventsAt(40, low), ElementsAre(Found17(40, low), kFirst17));
  receiver.StopBTRecoder();
  Start();
  const Samples high = Tone19(301, 300);
  EXPECT_THAT(EventsAt(40, high), ElementsAre(Found19(40, high), kFirst19));
}

TEST_F(ReceiverDetection, AToneIsMeasuredAgainstItsOwnFrequencysAmbience) {
  Start();
  LearnAmbience(Tone17(50, 1));
  EXPECT_THAT(EventsAt(36, Tone17(1000)), IsEmpty());
  EXPECT_THAT(EventsAt(37, Tone19(1000)), ElementsAre(testing::_, kFirst19));
  receiver.StopBTRecoder();
  Start();
  LearnAmbience(Tone19(50, 1));
  EXPECT_THAT(EventsAt(36, Tone19(1000)), IsEmpty());
  EXPECT_THAT(EventsAt(37, Tone17(1000)), ElementsAre(testing::_, kFirst17));
}

TEST_F(ReceiverDetection, WithoutAnyAmbienceNoToneIsEverFound) {
  Start();
  LearnAmbience(Samples(kVoiceBlockSamples, 0));
  EXPECT_THAT(EventsAt(36, Tone17(1000)), IsEmpty());
  EXPECT_THAT(EventsAt(37, Tone19(1000)), IsEmpty());
  EXPECT_THAT(EventsAt(38, Click(32767)), IsEmpty());
}

// A magnitude in double precision, as it is documented: a sample at a time, the angle from n = 0.
double DoubleLevel(const Samples& samples, double hz) {
  double re = 0.0;
  double im = 0.0;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    const double angle = n * 6.283185307179586 * hz / kVoiceRateHz;
    re += samples[static_cast<std::size_t>(n)] * std::cos(angle);
    im += samples[static_cast<std::size_t>(n)] * std::sin(angle);
  }
  return std::sqrt(re * re + im * im);
}

double MeanOf30(double level) {
  double sum = 0.0;
  for (int block = 0; block < 30; ++block) {
    sum += level;
  }
  return sum / 30.0;
}

// Looks for a phase of `sound` with which 50 times the samples have exactly 50 times the mean level of 30 such blocks.
std::optional<Samples> ExactAmbience(ToneMix sound, double hz) {
  for (int step = 0; step < 1000; ++step) {
    sound.phase = step * 0.005;
    Samples ambience = Block(sound);
    if (50.0 * MeanOf30(DoubleLevel(ambience, hz)) == DoubleLevel(Times(50, ambience), hz)) {
      return ambience;
    }
  }
  return std::nullopt;
}

// The block with one sample changed by one so that the tone is a little weaker or stronger.
Samples Changed(const Samples& block, double hz, bool stronger) {
  const double before = DoubleLevel(block, hz);
  for (const int change : {1, -1}) {
    Samples changed = block;
    changed[0] = static_cast<std::int16_t>(changed[0] + change);
    if ((DoubleLevel(changed, hz) > before) == stronger) {
      return changed;
    }
  }
  return block;
}

TEST_F(ReceiverDetection, ALevelOfExactly50TimesTheAmbienceIsEnoughFor17kHz) {
  const auto ambience = ExactAmbience({3.0, 0.0, 0.0, 0.0, 0.0, 0.0}, 17000.0);
  ASSERT_TRUE(ambience.has_value());
  const Samples exact = Times(50, *ambience);
  const Samples weaker = Changed(exact, 17000.0, false);
  ASSERT_LT(DoubleLevel(weaker, 17000.0), DoubleLevel(exact, 17000.0));
  Start();
  LearnAmbience(*ambience);
  EXPECT_THAT(EventsAt(36, weaker), IsEmpty());
  EXPECT_THAT(EventsAt(37, exact), ElementsAre(Found17(37, exact), kFirst17));
}

TEST_F(ReceiverDetection, ALevelOfExactly50TimesTheAmbienceIsNotEnoughFor19kHz) {
  const auto ambience = ExactAmbience({0.0, 0.0, 0.0, 3.0, 0.0, 0.0}, 19000.0);
  ASSERT_TRUE(ambience.has_value());
  const Samples exact = Times(50, *ambience);
  const Samples stronger = Changed(exact, 19000.0, true);
  ASSERT_GT(DoubleLevel(stronger, 19000.0), DoubleLevel(exact, 19000.0));
  Start();
  LearnAmbience(*ambience);
  EXPECT_THAT(EventsAt(36, exact), IsEmpty());
  EXPECT_THAT(EventsAt(37, stronger), ElementsAre(Found19(37, stronger), kFirst19));
}

TEST_F(ReceiverDetection, WithoutCallbacksABlockIsTreatedAllTheSame) {
  OrvexReceiver alone{OrvexReceiverCallbacks{}};
  alone.StartBTRecoder();
  std::vector<Samples> blocks(35, quiet);
  blocks.push_back(Tone17(100));
  blocks.push_back(Tone19(100));
  blocks.resize(55, Block({0.0, 0.0, 200.0, 200.0, 0.0, 0.0}));  // noisy
  for (int buffer = 1; buffer <= 55; ++buffer) {
    world.journal.Clear();
    ASSERT_TRUE(world.Deliver(blocks[static_cast<std::size_t>(buffer - 1)]));
    ASSERT_EQ(world.journal.Has("E0 completed ambient noise"), buffer == 35);
    ASSERT_EQ(world.journal.Has("E0 completed calculation of delay"), buffer == 37);
    ASSERT_EQ(world.journal.Has("E2 by abnormal input"), buffer >= 48);
  }
}

}  // namespace
