// Readings of sounds that no room has changed: how close they come to what the noise allows.
#include "fine/fine_reading.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

double Product(const std::vector<double>& one, const std::vector<double>& other) {
  return std::inner_product(one.begin(), one.end(), other.begin(), 0.0);
}

void TakeOffPart(std::vector<double>& values, const std::vector<double>& along) {
  const double part = Product(values, along) / Product(along, along);
  for (std::size_t n = 0; n < values.size(); ++n) {
    values[n] -= part * along[n];
  }
}

// The smallest deviation that an unbiased estimate of a tone's onset can have, in seconds: the Cramer-Rao bound for the
// first 10 ms of all bursts together, amplitude and phase unknown. It is the noise over the length of that part of the
// signal's derivative by the onset which no change of amplitude and phase can make.
double OnsetBoundS(const HeardSound& sound, std::size_t tone) {
  constexpr double kKnownS = 10e-3;
  std::vector<double> byOnset;
  std::vector<double> byCosine;
  std::vector<double> bySine;
  for (int n = 0; n < kKnownS * kVoiceRateHz; ++n) {
    const double s = n / kVoiceRateHz;
    const double angle = 2.0 * tools::kPi * sound.tonesHz[tone] * s;
    const double rampS = sound.design.rampMs * 1e-3;
    const double share = std::min(1.0, s / rampS);
    const double slopePerS = 0.5 * tools::kPi / rampS * std::sin(tools::kPi * share);
    byOnset.push_back(-sound.amplitudes[tone] * slopePerS * std::cos(angle));
    byCosine.push_back((0.5 - 0.5 * std::cos(tools::kPi * share)) * std::cos(angle));
    bySine.push_back((0.5 - 0.5 * std::cos(tools::kPi * share)) * std::sin(angle));
  }
  TakeOffPart(bySine, byCosine);
  TakeOffPart(byOnset, byCosine);
  TakeOffPart(byOnset, bySine);
  return sound.noise / std::sqrt(sound.design.pairs * Product(byOnset, byOnset));
}

TEST(FineReading, ComesCloseToTheCramerRaoBoundInWhiteNoise) {
  constexpr int kRecordings = 32;
  HeardSound sound;
  const double boundS = std::hypot(OnsetBoundS(sound, 0), OnsetBoundS(sound, 1));
  EXPECT_NEAR(17e-6, boundS, 0.5e-6);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> differenceMs(-60.0, 60.0);
  double squares = 0.0;
  double widths = 0.0;
  int inside = 0;
  for (int n = 0; n < kRecordings; ++n) {
    sound.seed = static_cast<unsigned>(n + 1);
    sound.differenceMs = differenceMs(random);
    const Reading reading = ReadingOf(MakeRecording(sound));
    ASSERT_TRUE(reading.differenceS) << reading.reason;
    EXPECT_EQ(4, reading.pairs);
    const double errorS = *reading.differenceS - sound.differenceMs * 1e-3;
    squares += errorS * errorS;
    widths += 0.5 * (reading.intervalS.high - reading.intervalS.low);
    inside += std::abs(errorS) < reading.intervalS.high - *reading.differenceS ? 1 : 0;
  }
  EXPECT_LT(std::sqrt(squares / kRecordings), 1.3 * boundS);
  EXPECT_GE(inside, kRecordings - 3);
  // It allows for a reflection, which is not there.
  EXPECT_LT(widths / kRecordings, 2.0 * 1.96 * boundS);
}

TEST(FineReading, LevelsAreThoseOfABlockThatTheToneFills) {
  const HeardSound sound;
  const Reading reading = ReadingOf(MakeRecording(sound));
  for (const auto& arrival : reading.arrivals) {
    ASSERT_TRUE(arrival);
    EXPECT_NEAR(46.0, arrival->levelDb, 1.0);
  }
}

TEST(FineReading, ArrivalsAreThoseOfTheFirstBursts) {
  HeardSound sound;
  sound.amplitudes = {3000.0, 3000.0};
  sound.differenceMs = -33.3;
  const Reading reading = ReadingOf(MakeRecording(sound));
  for (const std::size_t tone : {0U, 1U}) {
    ASSERT_TRUE(reading.arrivals[tone]);
    EXPECT_NEAR(OnsetOf(sound, tone, 0), reading.arrivals[tone]->sample, 1.5);
    EXPECT_LT(reading.arrivals[tone]->deviationS, 30e-6);
  }
}

}  // namespace
}  // namespace orvex::fine
