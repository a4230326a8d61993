// Recordings of which there is no reading, each with its reason, and broken ones that must not give a wrong one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

using ::testing::MatchesRegex;

constexpr const char* kNothing = "nothing of the test sound is heard";

void ExpectRefused(const Recording& recording, const std::string& reason) {
  const Reading reading = ReadingOf(recording);
  EXPECT_FALSE(reading.differenceS);
  EXPECT_EQ(reason, reading.reason);
}

// A reason, or a difference that is not wrong.
void ExpectNotWrong(const HeardSound& sound, double withinMs) {
  const Reading reading = ReadingOf(MakeRecording(sound));
  EXPECT_EQ(reading.differenceS.has_value(), reading.reason.empty());
  if (reading.differenceS) {
    EXPECT_NEAR(sound.differenceMs, *reading.differenceS * 1e3, withinMs);
  }
}

HeardSound SoundAt(double differenceMs) {
  HeardSound sound;
  sound.differenceMs = differenceMs;
  return sound;
}

TEST(FineRefusals, NothingIsHeardWhereNothingIs) {
  ExpectRefused({}, kNothing);
  ExpectRefused({-32768}, kNothing);
  ExpectRefused(Recording(46545), kNothing);
  ExpectRefused(MakeNoise(1000.0, 8000.0), kNothing);
  for (const unsigned seed : {1U, 2U, 3U}) {
    ExpectRefused(MakeNoise(3300.0, 25.0, seed), kNothing);
  }
}

// It begins and ends with a click, in which all frequencies are.
TEST(FineRefusals, AConstantIsNoSound) {
  EXPECT_THAT(ReadingOf(Recording(46545, 32767)).reason, testing::HasSubstr("have another frequency"));
}

TEST(FineRefusals, ASinglePairThatOthersShouldFollowIsNotTheSound) {
  HeardSound sound = SoundAt(20.0);
  sound.design.pairs = 1;
  ExpectRefused(MakeRecording(sound), "only one pair of bursts, or none that agrees with it");
}

TEST(FineRefusals, OneToneAloneIsNoSound) {
  HeardSound sound;
  sound.amplitudes = {320.0, 0.0};
  ExpectRefused(MakeRecording(sound), "no burst of 19 kHz is heard");
  sound.amplitudes = {0.0, 320.0};
  ExpectRefused(MakeRecording(sound), "no burst of 17 kHz is heard");
}

TEST(FineRefusals, BurstsMayBeTooWeak) {
  HeardSound sound;
  sound.amplitudes = {320.0, 18.0};
  const Reading reading = ReadingOf(MakeRecording(sound));
  EXPECT_FALSE(reading.differenceS);
  EXPECT_THAT(reading.reason,
              MatchesRegex("the bursts of 19 kHz are too weak, [0-9]\\.[0-9] times the noise, expected 10"));
}

TEST(FineRefusals, BurstsMayHaveNoPartnerInTheRecording) {
  HeardSound sound = SoundAt(280.0);
  sound.design.pairs = 2;
  Recording recording = MakeRecording(sound);
  const auto silence = [&](std::size_t tone, std::size_t pair) {
    const auto begin = recording.begin() + std::lround(OnsetOf(sound, tone, pair)) - 100;
    const Recording noise = MakeNoise(30.0, sound.noise);
    std::copy(noise.begin(), noise.end(), begin);
  };
  silence(0, 1);
  silence(1, 0);
  ExpectRefused(recording, "no pair has both of its bursts");
}

// The tones of such a sound are 4 dB above full scale.
TEST(FineRefusals, ClippingMovesNothing) {
  for (const double differenceMs : {-50.0, 0.0, 3.0}) {
    HeardSound sound = SoundAt(differenceMs);
    sound.amplitudes = {1600.0, 1600.0};
    sound.gainDb = 30.0;
    ExpectNotWrong(sound, 1.0);
  }
}

TEST(FineRefusals, BurstsThatAreMostlyClippedHaveLostTheirShape) {
  HeardSound sound = SoundAt(0.0);
  sound.amplitudes = {8000.0, 8000.0};
  sound.gainDb = 30.0;
  EXPECT_THAT(ReadingOf(MakeRecording(sound)).reason, testing::StartsWith("the bursts of 17 kHz are clipped, "));
}

TEST(FineRefusals, TonesBesideItsOwnAreNoSound) {
  HeardSound sound = SoundAt(-30.0);
  sound.tonesHz = {16000.0, 18000.0};
  EXPECT_THAT(ReadingOf(MakeRecording(sound)).reason,
              testing::StartsWith("the bursts near 17 kHz have another frequency, "));
}

TEST(FineRefusals, AnotherSoundGivesNoWrongReading) {
  for (const double differenceMs : {-30.0, 5.0}) {
    SCOPED_TRACE(differenceMs);
    HeardSound otherSpacing = SoundAt(differenceMs);
    otherSpacing.design.spacingMs = 500.0;
    ExpectNotWrong(otherSpacing, 1.0);
    HeardSound otherLength = SoundAt(differenceMs);
    otherLength.design.burstMs = 10.0;
    ExpectNotWrong(otherLength, 1.0);
  }
}

TEST(FineRefusals, ASecondOfTheSoundIsEnough) {
  HeardSound sound = SoundAt(40.0);
  sound.lengthMs = 1000.0;
  const Reading reading = ReadingOf(MakeRecording(sound));
  ASSERT_TRUE(reading.differenceS) << reading.reason;
  EXPECT_NEAR(40.0, *reading.differenceS * 1e3, 0.2);
  EXPECT_EQ(2, reading.pairs);
}

}  // namespace
}  // namespace orvex::fine
