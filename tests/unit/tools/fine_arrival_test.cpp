// What a reading tells of each tone: when it arrives, how loud it is, and its envelope.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

HeardSound LateSound() {
  HeardSound sound;
  sound.amplitudes = {2000.0, 2000.0};
  sound.differenceMs = 100.0;
  return sound;
}

// The level is against the noise before the sound, when it is at least that of the quieter part of the recording and
// less than twice as strong.
TEST(FineArrival, LevelIsAgainstTheNoiseBeforeTheSoundUnlessThatIsDisturbed) {
  HeardSound sound;
  sound.beginMs = 300.0;
  struct Case {
    double noiseBefore;
    double heardNoise;
  };
  for (const Case& one : {Case{5.0, sound.noise}, Case{32.6, 32.6}, Case{45.0, sound.noise}}) {
    Recording recording = MakeRecording(sound);
    const Recording before = MakeNoise(290.0, one.noiseBefore, 9);
    std::copy(before.begin(), before.end(), recording.begin());
    const Reading reading = ReadingOf(recording);
    for (const auto& arrival : reading.arrivals) {
      ASSERT_TRUE(arrival) << one.noiseBefore;
      EXPECT_NEAR(46.0 - 20.0 * std::log10(one.heardNoise / sound.noise), arrival->levelDb, 1.5) << one.noiseBefore;
    }
  }
}

// Of half the amplitude of LateSound().
void ExpectFilteredBurst(const Arrival& arrival) {
  constexpr double kStepS = 3.5 / kVoiceRateHz;
  const FilteredBurst burst({});
  EXPECT_NEAR(-3e-3, arrival.envelope.front().s, kStepS);
  EXPECT_NEAR(6e-3, arrival.envelope.back().s, kStepS);
  for (const EnvelopePoint& point : arrival.envelope) {
    EXPECT_NEAR(1000.0 * burst(point.s), point.magnitude, 20.0) << point.s;
  }
}

// As where the remote lies behind a piece of furniture.
TEST(FineArrival, IsThatOfTheDirectSoundWhenAReflectionIsLouder) {
  HeardSound sound = LateSound();
  const Recording direct = MakeRecording(sound);
  sound.amplitudes = {6000.0, 0.0};
  sound.noise = 0.0;
  sound.beginMs += 40.0;
  const Reading reading = ReadingOf(SumOf(direct, MakeRecording(sound)));
  ASSERT_TRUE(reading.differenceS) << reading.reason;
  EXPECT_NEAR(OnsetOf(LateSound(), 0, 0), reading.arrivals[0]->sample, 1.5);
  EXPECT_NEAR(LateSound().differenceMs, *reading.differenceS * 1e3, 0.05);
  ExpectFilteredBurst(*reading.arrivals[0]);
}

TEST(FineArrival, EnvelopeIsTheFilteredBurstFrom3MsBeforeTheOnsetTo6MsAfterIt) {
  const Reading reading = ReadingOf(MakeRecording(LateSound()));
  for (const auto& arrival : reading.arrivals) {
    ASSERT_TRUE(arrival);
    ExpectFilteredBurst(*arrival);
  }
}

TEST(FineArrival, EnvelopeEndsWhereTheFilterLacksSamples) {
  const HeardSound sound = LateSound();
  Recording recording = MakeRecording(sound);
  CutAt(recording, OnsetOf(sound, 1, 0) / kVoiceRateHz * 1e3 + 4.0);
  const Reading reading = ReadingOf(recording);
  ASSERT_TRUE(reading.arrivals[1]);
  const double last = reading.arrivals[1]->sample + reading.arrivals[1]->envelope.back().s * kVoiceRateHz;
  const double end = static_cast<double>(recording.size()) - kFilterHalf;
  EXPECT_LT(last, end);
  EXPECT_GT(last, end - 5.0);
}

}  // namespace
}  // namespace orvex::fine
