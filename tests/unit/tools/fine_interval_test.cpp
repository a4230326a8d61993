// How wide the interval of a reading is, and why.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

constexpr double kDeviationsOf95Percent = 1.96;

double HalfWidthMs(const Reading& reading) {
  return 0.5e3 * (reading.intervalS.high - reading.intervalS.low);
}

HeardSound LoudSoundAt(double differenceMs) {
  HeardSound sound;
  sound.amplitudes = {2000.0, 2000.0};
  sound.differenceMs = differenceMs;
  return sound;
}

TEST(FineInterval, IsNeverNarrowerThanTwoHundredthsOfAMillisecond) {
  HeardSound sound = LoudSoundAt(0.0);
  sound.amplitudes = {5000.0, 5000.0};
  double narrowestMs = 1.0;
  for (unsigned n = 1; n <= 10; ++n) {
    sound.seed = n;
    sound.differenceMs = 0.0031 * n;
    const Reading reading = ReadingOf(MakeRecording(sound));
    ASSERT_TRUE(reading.differenceS) << reading.reason;
    narrowestMs = std::min(narrowestMs, HalfWidthMs(reading));
  }
  EXPECT_GT(narrowestMs, 0.019);
  EXPECT_LT(narrowestMs, 0.025);
}

// The same sound again, 0.52 ms later and 3 dB weaker.
TEST(FineInterval, IsWiderAgainstTheDeviationsWhereAReflectionIsLikely) {
  HeardSound sound = LoudSoundAt(50.0);
  sound.amplitudes = {1000.0, 1000.0};
  const Recording direct = MakeRecording(sound);
  HeardSound reflection = sound;
  reflection.noise = 0.0;
  reflection.beginMs += 0.52;
  reflection.amplitudes = {700.0, 700.0};
  const Recording both = SumOf(direct, MakeRecording(reflection));
  const auto widthOf = [](const Reading& reading) {
    return HalfWidthMs(reading) / std::hypot(reading.arrivals[0]->deviationS, reading.arrivals[1]->deviationS);
  };
  EXPECT_GT(widthOf(ReadingOf(both)), 1.2 * widthOf(ReadingOf(direct)));
}

// A single burst tells the rate to 0.3 per mille, and the difference is off by as much.
TEST(FineInterval, GrowsWithTheDifferenceWhereTheRateIsThatOfASingleBurst) {
  for (const double differenceMs : {140.0, 280.0}) {
    const HeardSound sound = LoudSoundAt(differenceMs);
    Recording recording = MakeRecording(sound);
    EXPECT_LT(HalfWidthMs(ReadingOf(recording)), 0.05);
    CutAt(recording, sound.beginMs + differenceMs + 14.0);
    EXPECT_NEAR(kDeviationsOf95Percent * 0.3e-3 * differenceMs, HalfWidthMs(ReadingOf(recording)), 0.01);
  }
}

// That of the other tone is whole.
TEST(FineInterval, HoldsTheTruthWhateverTheRateWhenOnlyTheLaterBurstIsCut) {
  for (const double differenceMs : {-250.0, 250.0}) {
    HeardSound sound = LoudSoundAt(differenceMs);
    sound.beginMs = 500.0;
    sound.rateErrorPpm = -1500.0;
    Recording recording = MakeRecording(sound);
    CutAt(recording, OnsetOf(sound, differenceMs < 0.0 ? 0 : 1, 0) / kVoiceRateHz * 1e3 + 5.0);
    const Reading reading = ReadingOf(recording);
    ASSERT_TRUE(reading.differenceS) << reading.reason;
    EXPECT_NEAR(sound.rateErrorPpm, reading.ratePpm.value_or(0.0), 100.0);
    EXPECT_NEAR(differenceMs, *reading.differenceS * 1e3, HalfWidthMs(reading));
  }
}

}  // namespace
}  // namespace orvex::fine
