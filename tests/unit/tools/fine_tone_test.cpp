// Pairs, rate, frequency and steadiness of a tone's bursts, in recordings and positions of which everything is known.
#include "fine/tone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kBlock = kVoiceBlockSamples;
const double kSpacing = tools::SoundDesign{}.spacingMs * 1e-3 * kVoiceRateHz;

AlignedBurst BurstAt(std::size_t pair, double position) {
  AlignedBurst burst;
  burst.pair = pair;
  burst.position = position;
  return burst;
}

// The tones of so many pairs, those of a pair as many samples apart as is given.
std::array<Tone, 2> PairsApart(const std::vector<double>& distances) {
  std::array<Tone, 2> tones;
  for (std::size_t pair = 0; pair < distances.size(); ++pair) {
    const double position = 5000.0 + static_cast<double>(pair) * kSpacing;
    tones[0].aligned.bursts.push_back(BurstAt(pair, position));
    tones[1].aligned.bursts.push_back(BurstAt(pair, position + distances[pair]));
  }
  return tones;
}

std::vector<std::size_t> AgreeingOf(const std::vector<double>& distances) {
  return AgreeingPairs(PairsApart(distances), static_cast<int>(distances.size()));
}

TEST(FineTone, PairsAgreeWhoseTonesAreEquallyFarApart) {
  EXPECT_THAT(AgreeingOf({900.0, 910.0, 890.0, 900.0}), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(AgreeingOf({900.0, 900.0 - kBlock, 900.0, 900.0}), ElementsAre(0, 2, 3));
  EXPECT_THAT(AgreeingOf({0.0, 60.0, 120.0, 70.0}), ElementsAre(1, 3));
}

TEST(FineTone, PairsThatHaveLostBlocksBetweenTheirTonesAgreeWithNoneThatHasNot) {
  for (const double sign : {-1.0, 1.0}) {
    const double whole = sign * 3000.0;
    const double lacking = sign * (3000.0 - kBlock);
    const double lackingTwo = sign * (3000.0 - 2.0 * kBlock);
    EXPECT_THAT(AgreeingOf({lacking, whole, lacking, whole}), ElementsAre(1, 3)) << sign;
    EXPECT_THAT(AgreeingOf({lacking, lacking, whole, lacking}), ElementsAre(2)) << sign;
    EXPECT_THAT(AgreeingOf({lackingTwo, lackingTwo, lackingTwo, whole}), ElementsAre(3)) << sign;
    EXPECT_THAT(AgreeingOf({lacking, lacking, whole + 200.0}), ElementsAre(0, 1)) << sign;
  }
  EXPECT_THAT(AgreeingOf({-100.0, -100.0, 100.0 + kBlock}), ElementsAre(0, 1));
}

TEST(FineTone, TonesFurtherApartThanARunMeasuresAreAPairOnlyWhereAllBurstsAreInUse) {
  const double furthest = tools::kPairingSpanMs * 1e-3 * kVoiceRateHz;
  for (const double distance : {-furthest, furthest}) {
    EXPECT_THAT(AgreeingPairs(PairsApart({distance, distance}), 2), ElementsAre(0, 1));
    EXPECT_THAT(AgreeingPairs(PairsApart({distance, distance}), 3), ElementsAre(0, 1));
    EXPECT_THAT(AgreeingPairs(PairsApart({1.02 * distance, 1.02 * distance}), 2), ElementsAre(0, 1));
    EXPECT_THAT(AgreeingPairs(PairsApart({1.02 * distance, 1.02 * distance}), 3), IsEmpty());
  }
}

TEST(FineTone, APairHasBothOfItsBursts) {
  std::array<Tone, 2> tones = PairsApart({700.0, 700.0, 700.0});
  tones[0].aligned.bursts.erase(tones[0].aligned.bursts.begin());
  tones[1].aligned.bursts.pop_back();
  EXPECT_THAT(AgreeingPairs(tones, 3), ElementsAre(1));
  tones[1].aligned.bursts.pop_back();
  EXPECT_THAT(AgreeingPairs(tones, 3), IsEmpty());
}

TEST(FineTone, RateIsThatOfTheDistancesOfTheBursts) {
  std::array<Tone, 2> tones = PairsApart({500.0, 500.0, 500.0});
  for (Tone& tone : tones) {
    for (AlignedBurst& burst : tone.aligned.bursts) {
      burst.position *= 1.0 + 1.2e-3;
    }
  }
  EXPECT_NEAR(1.2e-3, RateError(tones, {}).value_or(0.0), 1e-9);
}

TEST(FineTone, RateDoesNotDependOnLostBlocks) {
  std::array<Tone, 2> tones = PairsApart({500.0, 500.0, 500.0, 500.0});
  for (Tone& tone : tones) {
    tone.aligned.bursts[2].position -= kBlock;
    tone.aligned.bursts[3].position -= 3.0 * kBlock;
  }
  EXPECT_NEAR(0.0, RateError(tones, {}).value_or(1.0), 1e-9);
}

TEST(FineTone, RateIsThatOfTheToneThatHasTwoBursts) {
  std::array<Tone, 2> tones = PairsApart({500.0, 500.0});
  tones[1].aligned.bursts.pop_back();
  tones[0].aligned.bursts[1].position += 1e-3 * kSpacing;
  EXPECT_NEAR(1e-3, RateError(tones, {}).value_or(0.0), 1e-9);
  tones[0].aligned.bursts.pop_back();
  EXPECT_FALSE(RateError(tones, {}));
}

// One burst in use, of the 17 kHz tone of a sound.
class FineToneHeard : public ::testing::Test {
protected:
  Tone ToneAt(double onset) const {
    Tone tone;
    tone.hz = tools::kLeftToneHz;
    tone.band = &m_Band;
    tone.aligned.bursts = {BurstAt(0, onset)};
    tone.aligned.onset = onset;
    return tone;
  }
  static Recording Noiseless(double offHz, double rateErrorPpm = 0.0) {
    HeardSound sound;
    sound.noise = 0.0;
    sound.amplitudes = {8000.0, 0.0};
    sound.tonesHz[0] += offHz;
    sound.rateErrorPpm = rateErrorPpm;
    return MakeRecording(sound);
  }
  double SteadinessOf(const Recording& recording) const {
    return Steadiness(SamplesOf(recording), ToneAt(OnsetOf({}, 0, 0)), {}).value_or(-1.0);
  }

  const BaseBand m_Band{tools::kLeftToneHz};
};

TEST_F(FineToneHeard, PlateauLiesBetweenTheRampsAndEndsWithTheRecording) {
  const Recording recording(5000);
  const double sampleMs = 1e3 / kVoiceRateHz;
  const Span whole = PlateauOf(SamplesOf(recording), ToneAt(1000.0), {});
  EXPECT_NEAR(3.0, static_cast<double>(whole.begin - 1000) * sampleMs, sampleMs);
  EXPECT_NEAR(15.0, static_cast<double>(whole.end - 1000) * sampleMs, sampleMs);
  EXPECT_EQ(5000 - kFilterHalf, PlateauOf(SamplesOf(recording), ToneAt(4500.0), {}).end);
  EXPECT_EQ(0, PlateauOf(SamplesOf(recording), ToneAt(-400.0), {}).begin);
}

TEST_F(FineToneHeard, FrequencyErrorIsThatOfTheTone) {
  for (const double offHz : {-300.0, 20.0}) {
    const Recording recording = Noiseless(offHz);
    const Tone tone = ToneAt(OnsetOf({}, 0, 0));
    const Span plateau = PlateauOf(SamplesOf(recording), tone, {});
    EXPECT_NEAR(offHz, tools::kLeftToneHz * FrequencyError(SamplesOf(recording), tone, plateau, 12), 0.5);
    EXPECT_EQ(0.0, FrequencyError(SamplesOf(recording), tone, {100, 112}, 12));
  }
}

TEST_F(FineToneHeard, ASingleBurstTellsTheRateByItsFrequency) {
  for (const double ppm : {-1500.0, 900.0}) {
    HeardSound sound;
    sound.rateErrorPpm = ppm;
    const Recording recording = Noiseless(0.0, ppm);
    EXPECT_NEAR(ppm, 1e6 * RateErrorOfOne(SamplesOf(recording), ToneAt(OnsetOf(sound, 0, 0)), {}), 20.0);
  }
  // What turns faster is no error of the rate.
  EXPECT_EQ(0.0, RateErrorOfOne(SamplesOf(Noiseless(60.0)), ToneAt(OnsetOf({}, 0, 0)), {}));
}

TEST_F(FineToneHeard, AToneIsSteadyWhateverItsFrequency) {
  for (const double offHz : {-300.0, 0.0, 27.0}) {
    EXPECT_NEAR(1.0, SteadinessOf(Noiseless(offHz)), 1e-3) << offHz;
  }
}

// A length of the low-pass later it has fallen by exp(-2.5 ms / 5 ms).
TEST_F(FineToneHeard, AToneThatDecaysIsLessSteady) {
  constexpr double kDecayS = 5e-3;
  Recording recording(20000);
  for (std::size_t n = 0; n < recording.size(); ++n) {
    const double s = (static_cast<double>(n) - OnsetOf({}, 0, 0)) / kVoiceRateHz;
    const double amplitude = std::min(3e4, 8e3 * std::exp(-s / kDecayS));
    recording[n] =
        static_cast<std::int16_t>(std::lround(amplitude * std::cos(2.0 * tools::kPi * tools::kLeftToneHz * s)));
  }
  EXPECT_NEAR(std::exp(-kFilterTaps / kVoiceRateHz / kDecayS), SteadinessOf(recording), 0.01);
}

TEST_F(FineToneHeard, AClickIsNotSteadyAndNoiseHardly) {
  Recording click(20000);
  click[static_cast<std::size_t>(OnsetOf({}, 0, 0)) + 200] = 30000;
  EXPECT_LT(SteadinessOf(click), 0.01);
  double mean = 0.0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    mean += SteadinessOf(MakeNoise(400.0, 3000.0, seed)) / 20.0;
  }
  EXPECT_LT(mean, 0.45);
}

// The second burst in use is noise as strong as the tone of the first: half of what sounds is steady.
TEST_F(FineToneHeard, AllBurstsInUseTellTheSteadiness) {
  constexpr double kNoise = 3000.0;
  HeardSound sound;
  sound.design.pairs = 1;
  sound.noise = 0.0;
  sound.amplitudes = {2.0 * kNoise * std::sqrt(FilteredNoisePower()), 0.0};
  Recording recording = MakeRecording(sound);
  Tone tone = ToneAt(OnsetOf(sound, 0, 0));
  tone.aligned.bursts.push_back(BurstAt(1, OnsetOf(sound, 0, 1)));
  double mean = 0.0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const Recording noise = MakeNoise(60.0, kNoise, seed);
    std::copy(noise.begin(), noise.end(), recording.begin() + std::lround(OnsetOf(sound, 0, 1) - 1000.0));
    mean += Steadiness(SamplesOf(recording), tone, {}).value_or(-1.0) / 20.0;
  }
  EXPECT_NEAR(0.5, mean, 0.1);
}

TEST_F(FineToneHeard, TooLittleOfABurstTellsNothing) {
  Recording recording = Noiseless(0.0);
  // From 3 ms after the onset: twice the length of the low-pass, and half of it to the end.
  const double least = OnsetOf({}, 0, 0) + 3e-3 * kVoiceRateHz + 2 * kFilterTaps + kFilterHalf;
  recording.resize(static_cast<std::size_t>(least) + 2);
  EXPECT_GT(SteadinessOf(recording), 0.99);
  recording.resize(static_cast<std::size_t>(least) - 2);
  EXPECT_EQ(-1.0, SteadinessOf(recording));
}

}  // namespace
}  // namespace orvex::fine
