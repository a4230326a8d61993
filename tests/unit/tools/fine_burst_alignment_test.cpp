// Bursts laid over one another: which are in use, and what their mean is.
#include "fine/burst_alignment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

using ::testing::ElementsAre;

AlignedBursts AlignTone(const Recording& recording, std::size_t tone) {
  const FilteredBurst shape({});
  const std::array<double, 2> tonesHz = {tools::kLeftToneHz, tools::kRightToneHz};
  const Samples samples = SamplesOf(recording);
  return Align(samples, BaseBand(tonesHz[tone]), shape, FindBursts({samples, samples}, {}, [] {})[tone],
               static_cast<std::int64_t>(samples.count) - kFilterHalf);
}

std::vector<std::size_t> PairsOf(const AlignedBursts& aligned) {
  std::vector<std::size_t> pairs;
  for (const AlignedBurst& burst : aligned.bursts) {
    pairs.push_back(burst.pair);
  }
  return pairs;
}

HeardSound LoudSound() {
  HeardSound sound;
  sound.amplitudes = {3000.0, 3000.0};
  return sound;
}

TEST(FineBurstAlignment, LaysTheBurstsOverOneAnotherToAFractionOfASample) {
  HeardSound sound = LoudSound();
  sound.rateErrorPpm = -700.0;
  const Recording recording = MakeRecording(sound);
  for (const std::size_t tone : {0U, 1U}) {
    const AlignedBursts aligned = AlignTone(recording, tone);
    ASSERT_THAT(PairsOf(aligned), ElementsAre(0, 1, 2, 3));
    EXPECT_FALSE(aligned.isCut);
    EXPECT_GT(aligned.likeness, 0.99);
    EXPECT_NEAR(OnsetOf(sound, tone, aligned.reference), aligned.onset, 10.0);
    for (std::size_t pair = 1; pair < 4; ++pair) {
      EXPECT_NEAR(OnsetOf(sound, tone, pair) - OnsetOf(sound, tone, 0),
                  aligned.bursts[pair].position - aligned.bursts[0].position, 0.5);
    }
  }
}

TEST(FineBurstAlignment, PeakToNoiseIsThatOfTheMean) {
  const HeardSound sound = LoudSound();
  const double noise = sound.noise * std::sqrt(FilteredNoisePower() / 4.0);
  EXPECT_NEAR(1.0, AlignTone(MakeRecording(sound), 0).peakToNoise / (0.5 * sound.amplitudes[0] / noise), 0.25);
}

TEST(FineBurstAlignment, LeavesOutABurstWithinWhichABlockWasLost) {
  const HeardSound sound = LoudSound();
  Recording recording = MakeRecording(sound);
  LoseBlock(recording, sound.beginMs + sound.design.spacingMs + 6.0);
  EXPECT_THAT(PairsOf(AlignTone(recording, 0)), ElementsAre(0, 2, 3));
}

TEST(FineBurstAlignment, LeavesOutABurstWithAnotherSoundInIt) {
  const HeardSound sound = LoudSound();
  Recording recording = MakeRecording(sound);
  std::mt19937 random(3);
  std::normal_distribution<double> noise(0.0, 6000.0);
  const auto begin = static_cast<std::size_t>(OnsetOf(sound, 1, 2));
  for (std::size_t n = begin; n < begin + 800; ++n) {
    recording[n] = static_cast<std::int16_t>(recording[n] + std::lround(std::clamp(noise(random), -2e4, 2e4)));
  }
  EXPECT_THAT(PairsOf(AlignTone(recording, 1)), ElementsAre(0, 1, 3));
}

// Adds to a burst a tone beside its own, with this share of the burst's energy behind the low-pass.
void AddBeside(Recording& recording, const HeardSound& sound, std::size_t pair, double energyShare) {
  constexpr double kLengthMs = 18.0;
  const double offHz = 250.0 + 50.0 * static_cast<double>(pair);
  double passed = 0.0;
  for (int n = 0; n < kFilterTaps; ++n) {
    passed +=
        LowPass()[static_cast<std::size_t>(n)] * std::cos(2.0 * tools::kPi * offHz / kVoiceRateHz * (n - kFilterHalf));
  }
  // The integral of a ramp's square is 3 / 8 of its length.
  const double burstMs = sound.design.burstMs - 2.0 * sound.design.rampMs * (1.0 - 3.0 / 8.0);
  const double amplitude = sound.amplitudes[0] / passed * std::sqrt(energyShare * burstMs / kLengthMs);
  const double onset = OnsetOf(sound, 0, pair);
  const auto begin = static_cast<std::size_t>(std::ceil(onset));
  for (std::size_t n = begin; static_cast<double>(n) < onset + kLengthMs * 1e-3 * kVoiceRateHz; ++n) {
    const double turn = 2.0 * tools::kPi * (sound.tonesHz[0] + offHz) / kVoiceRateHz * static_cast<double>(n - begin);
    recording[n] = static_cast<std::int16_t>(recording[n] + std::lround(amplitude * std::cos(turn)));
  }
}

// Bursts with shares a and b of other sounds correlate by 1 / sqrt((1 + a) (1 + b)).
TEST(FineBurstAlignment, UsesBurstsThatAreNearlyAsAlikeAsTheOthers) {
  struct Case {
    double others;  // share of another sound in three of the bursts
    double last;    // and in the last one
    bool isUsed;
  };
  for (const Case& one : {Case{0.2, 0.3, true},      // 0.80 against 0.83: 96 % of it
                          Case{0.2, 0.6, false},     // 0.72: 87 %
                          Case{0.01, 0.03, true},    // 0.980 against 0.990: lacks twice as much
                          Case{0.01, 0.1, false},    // 0.949: lacks five times as much
                          Case{0.0, 0.0025, true},   // 0.9988 against 1
                          Case{0.0, 0.012, false}})  // 0.994
  {
    HeardSound sound;
    sound.amplitudes = {6000.0, 0.0};
    sound.noise = 5.0;
    Recording recording = MakeRecording(sound);
    for (std::size_t pair = 0; pair < 4; ++pair) {
      AddBeside(recording, sound, pair, pair == 3 ? one.last : one.others);
    }
    const std::vector<std::size_t> pairs = PairsOf(AlignTone(recording, 0));
    EXPECT_EQ(one.isUsed ? std::vector<std::size_t>({0, 1, 2, 3}) : std::vector<std::size_t>({0, 1, 2}), pairs)
        << one.others << " " << one.last;
  }
}

TEST(FineBurstAlignment, UsesABurstThatTheRecordingEndsInWhenThereIsNoOther) {
  const HeardSound sound = LoudSound();
  Recording recording = MakeRecording(sound);
  CutAt(recording, sound.beginMs + 8.0);
  const AlignedBursts aligned = AlignTone(recording, 0);
  EXPECT_THAT(PairsOf(aligned), ElementsAre(0));
  EXPECT_TRUE(aligned.isCut);
  EXPECT_NEAR(OnsetOf(sound, 0, 0), aligned.onset, 10.0);
}

TEST(FineBurstAlignment, NothingIsInUseThatWasNotFound) {
  EXPECT_TRUE(AlignTone(MakeNoise(1000.0, 25.0), 0).bursts.empty());
}

// Two bursts in use, 1000.3 samples apart.
AlignedBursts TwoBursts(double phase) {
  AlignedBursts aligned;
  aligned.bursts = {{0, 500.4, 1.0, 0.0}, {1, 1500.7, 1.0, phase}};
  aligned.onset = 500.4;
  return aligned;
}

TEST(FineBurstAlignment, MeanTurnsTheOthersOntoTheReference) {
  const Recording noise = MakeNoise(50.0, 1000.0);
  const BaseBand band(tools::kLeftToneHz);
  const std::vector<std::int64_t> offsets = {-30, 0, 7};
  const auto mean = MeanOf(SamplesOf(noise), band, TwoBursts(0.9), 510, offsets, 0.0);
  for (std::size_t n = 0; n < offsets.size(); ++n) {
    const auto reference = band.Values(SamplesOf(noise), 510 + offsets[n], 1, 1).front();
    const auto other = band.Values(SamplesOf(noise), 1510 + offsets[n], 1, 1).front();
    EXPECT_NEAR(0.0, std::abs(mean[n] - 0.5 * (reference + other * std::polar(1.0, -0.9))), 1e-9) << n;
  }
}

TEST(FineBurstAlignment, MeanTakesOffTheTurnOfTheRate) {
  constexpr double kOffHz = 20.0;
  Recording tone;
  for (int n = 0; n < 2000; ++n) {
    const double cycles = (tools::kRightToneHz + kOffHz) / kVoiceRateHz * n;
    tone.push_back(static_cast<std::int16_t>(std::lround(20000.0 * std::cos(2.0 * tools::kPi * cycles))));
  }
  AlignedBursts aligned;
  aligned.bursts = {{0, 500.0, 1.0, 0.0}};
  const auto mean = MeanOf(SamplesOf(tone), BaseBand(tools::kRightToneHz), aligned, 500, {0, 100, 400},
                           2.0 * tools::kPi * kOffHz / kVoiceRateHz);
  EXPECT_NEAR(0.0, std::abs(mean[1] - mean[0]), 2.0);
  EXPECT_NEAR(0.0, std::abs(mean[2] - mean[0]), 2.0);
}

TEST(FineBurstAlignment, RoundingIsWhatWholeSamplesLeave) {
  EXPECT_NEAR(0.5 * 0.3, RoundingOf(TwoBursts(0.0)), 1e-9);
}

}  // namespace
}  // namespace orvex::fine
