// Recordings of which there is no reading, each with its reason, and broken ones that must not give a wrong one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

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

// It begins and ends with a click, in which all frequencies are; there is nothing before the first of them.
TEST(FineRefusals, AConstantIsNoSound) {
  ExpectRefused(Recording(46545, 32767), kNothing);
}

// A recording of noise in which something sounds where the bursts of a sound with that difference would begin.
template <typename Sounding>
Recording SoundingAt(const HeardSound& sound, const Sounding& sounding) {
  Recording recording = MakeNoise(sound.lengthMs, sound.noise);
  for (std::size_t pair = 0; pair < 4; ++pair) {
    sounding(recording, static_cast<std::size_t>(std::lround(OnsetOf(sound, 0, pair))), pair);
  }
  return recording;
}

TEST(FineRefusals, ClicksInTheRhythmOfTheSoundAreNoTones) {
  for (const std::size_t length : {1U, 40U}) {
    std::mt19937 random(length);
    std::uniform_int_distribution<int> loud(-20000, 20000);
    const Recording clicks = SoundingAt({}, [&](Recording& recording, std::size_t begin, std::size_t) {
      for (std::size_t n = begin; n < begin + length; ++n) {
        recording[n] = static_cast<std::int16_t>(loud(random));
      }
    });
    EXPECT_THAT(ReadingOf(clicks).reason, MatchesRegex("what is heard near 1[79] kHz is no steady tone"));
  }
}

// A tone that begins at once and fades.
Recording Pings(const HeardSound& sound, std::size_t tone, double decayS) {
  Recording pings(MakeRecording(sound).size());
  for (std::size_t pair = 0; pair < 4; ++pair) {
    const double onset = OnsetOf(sound, tone, pair);
    for (auto n = static_cast<std::size_t>(std::ceil(onset)); static_cast<double>(n) < onset + 4000.0; ++n) {
      const double s = (static_cast<double>(n) - onset) / kVoiceRateHz;
      const double value = 8000.0 * std::exp(-s / decayS) * std::sin(2.0 * tools::kPi * sound.tonesHz[tone] * s);
      pings[n] = static_cast<std::int16_t>(std::lround(value));
    }
  }
  return pings;
}

// A length of the low-pass later, 2.5 ms, each has fallen by exp(-2.5 ms / decay): both steadinesses together are 0.06,
// 0.10, 0.14 and 0.24.
TEST(FineRefusals, PingsInTheRhythmOfTheSoundAreTheLessSteadyTheFasterTheyFade) {
  const HeardSound sound = SoundAt(60.0);
  for (const double decayS : {1.8e-3, 2.2e-3, 2.6e-3, 3.5e-3}) {
    const Recording pings = SumOf(Pings(sound, 0, decayS), Pings(sound, 1, decayS));
    const std::string reason = ReadingOf(SumOf(pings, MakeNoise(sound.lengthMs, sound.noise))).reason;
    EXPECT_EQ(decayS < 2.4e-3, reason.find("no steady tone") != std::string::npos) << decayS << ": " << reason;
  }
}

TEST(FineRefusals, TheToneIsNamedThatIsNotSteady) {
  for (const std::size_t fading : {0U, 1U}) {
    HeardSound sound = SoundAt(60.0);
    sound.amplitudes[fading] = 0.0;
    sound.amplitudes[1 - fading] = 3000.0;
    ExpectRefused(
        SumOf(MakeRecording(sound), Pings(sound, fading, 0.9e-3)),
        fading == 0 ? "what is heard near 17 kHz is no steady tone" : "what is heard near 19 kHz is no steady tone");
  }
}

TEST(FineRefusals, NoiseInTheRhythmOfTheSoundIsNotAlike) {
  const Recording rattle = SoundingAt({}, [](Recording& recording, std::size_t begin, std::size_t pair) {
    const Recording noise = MakeNoise(18.0, 3000.0, static_cast<unsigned>(pair + 1));
    std::copy(noise.begin(), noise.end(), recording.begin() + static_cast<std::ptrdiff_t>(begin));
  });
  ExpectRefused(rattle, "the bursts of 17 kHz are not alike");
}

// Each burst is a steady tone, and within 1 % of the right one.
TEST(FineRefusals, AMelodyIsNotAlike) {
  constexpr std::array<double, 4> kOffHz = {-160.0, 60.0, 160.0, -60.0};
  const Recording melody = SoundingAt({}, [&](Recording& recording, std::size_t begin, std::size_t pair) {
    HeardSound note;
    note.design.pairs = 1;
    note.noise = 0.0;
    note.lengthMs = 20.0;
    note.beginMs = 0.0;
    for (double& hz : note.tonesHz) {
      hz += kOffHz[pair];
    }
    const Recording heard = MakeRecording(note);
    std::transform(heard.begin(), heard.end(), recording.begin() + static_cast<std::ptrdiff_t>(begin),
                   recording.begin() + static_cast<std::ptrdiff_t>(begin),
                   [](std::int16_t a, std::int16_t b) { return static_cast<std::int16_t>(a + b); });
  });
  ExpectRefused(melody, "the bursts of 17 kHz are not alike");
}

TEST(FineRefusals, BurstsOfAnotherSpacingAreNotThoseOfTheSound) {
  HeardSound sound = SoundAt(-30.0);
  sound.design.spacingMs = 642.0;
  EXPECT_THAT(ReadingOf(MakeRecording(sound)).reason,
              MatchesRegex("the bursts are not as far apart as in the sound, \\+31[0-9][0-9] ppm"));
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
    const Reading reading = ReadingOf(MakeRecording(sound));
    ASSERT_TRUE(reading.differenceS) << reading.reason;
    EXPECT_NEAR(differenceMs, *reading.differenceS * 1e3, 1.0);
  }
}

TEST(FineRefusals, BurstsThatAreMostlyClippedHaveLostTheirShape) {
  HeardSound sound = SoundAt(0.0);
  sound.amplitudes = {8000.0, 8000.0};
  sound.gainDb = 30.0;
  EXPECT_THAT(ReadingOf(MakeRecording(sound)).reason, testing::StartsWith("the bursts of 17 kHz are clipped, "));
}

TEST(FineRefusals, TonesBesideItsOwnAreNoSound) {
  for (const double differenceMs : {-30.0, 0.0, 1.0}) {
    HeardSound sound = SoundAt(differenceMs);
    sound.tonesHz = {16000.0, 18000.0};
    EXPECT_THAT(ReadingOf(MakeRecording(sound)).reason,
                testing::StartsWith("the bursts near 17 kHz have another frequency, "));
  }
}

// 350 Hz are 2.1 % of one tone and 1.8 % of the other.
TEST(FineRefusals, TonesMoreThanTwoPercentOffHaveAnotherFrequency) {
  for (const double offHz : {-350.0, -170.0, 170.0, 350.0}) {
    HeardSound sound = SoundAt(0.0);
    sound.tonesHz = {tools::kLeftToneHz + offHz, tools::kRightToneHz + offHz};
    const Reading reading = ReadingOf(MakeRecording(sound));
    EXPECT_EQ(std::abs(offHz) < 200.0, reading.differenceS.has_value()) << offHz << " Hz: " << reading.reason;
  }
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

// What sounds at the first sample has begun before: neither the rest of a burst nor its reverberation is an onset.
TEST(FineRefusals, WhatTheRecordingBeginsInIsNoBurst) {
  HeardSound sound = SoundAt(4.0);
  sound.amplitudes = {3000.0, 3000.0};
  const Recording whole = MakeRecording(sound);
  for (const double intoMs : {1.0, 5.0, 9.0, 16.0}) {
    SCOPED_TRACE(intoMs);
    const auto cut = [&](std::size_t pair) {
      return Recording(whole.begin() + std::lround(OnsetOf(sound, 0, pair) + intoMs * 1e-3 * kVoiceRateHz),
                       whole.end());
    };
    const Reading reading = ReadingOf(cut(0));
    ASSERT_TRUE(reading.differenceS) << reading.reason;
    EXPECT_EQ(3, reading.pairs);
    EXPECT_NEAR(4.0, *reading.differenceS * 1e3, 0.1);
    ExpectRefused(cut(3), kNothing);
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
