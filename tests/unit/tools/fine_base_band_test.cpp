// The low-pass and the mixer of the fine reading, against closed forms and the power of noise.
#include "fine/base_band.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

Recording ToneOf(double hz, double amplitude, double phase, std::size_t count) {
  Recording recording;
  for (std::size_t n = 0; n < count; ++n) {
    const double cycles = hz / kVoiceRateHz * static_cast<double>(n);
    recording.push_back(
        static_cast<std::int16_t>(std::lround(amplitude * std::cos(2.0 * tools::kPi * cycles + phase))));
  }
  return recording;
}

TEST(FineBaseBand, LowPassSumsToOneAndIsSymmetric) {
  const std::vector<double>& taps = LowPass();
  ASSERT_EQ(static_cast<std::size_t>(kFilterTaps), taps.size());
  EXPECT_NEAR(1.0, std::accumulate(taps.begin(), taps.end(), 0.0), 1e-12);
  for (std::size_t n = 0; n < taps.size(); ++n) {
    EXPECT_NEAR(taps[n], taps[taps.size() - 1 - n], 1e-15) << n;
  }
}

TEST(FineBaseBand, AToneBecomesHalfItsAmplitudeWithItsPhase) {
  for (const double hz : {tools::kLeftToneHz, tools::kRightToneHz}) {
    const Recording tone = ToneOf(hz, 20000.0, 0.7, 2000);
    for (const std::complex<double>& value : BaseBand(hz).Values(SamplesOf(tone), 100, 90, 20)) {
      EXPECT_NEAR(0.0, std::abs(value - std::polar(10000.0, 0.7)), 1.0) << hz;
    }
  }
}

TEST(FineBaseBand, TheOtherToneIsSuppressedByMoreThan90Db) {
  const double limit = 0.5 * 30000.0 * std::pow(10.0, -90.0 / 20.0);
  const std::array<double, 2> tones = {tools::kLeftToneHz, tools::kRightToneHz};
  for (const std::size_t heard : {0U, 1U}) {
    const Recording tone = ToneOf(tones[heard], 30000.0, 0.3, 2000);
    for (const std::complex<double>& value : BaseBand(tones[1 - heard]).Values(SamplesOf(tone), 100, 180, 10)) {
      EXPECT_LT(std::abs(value), limit) << tones[heard];
    }
  }
}

TEST(FineBaseBand, WhiteNoiseHasTheFilteredPower) {
  constexpr double kDeviation = 1000.0;
  const Recording noise = MakeNoise(8000.0, kDeviation);
  for (const double hz : {tools::kLeftToneHz, tools::kRightToneHz}) {
    const std::size_t count = noise.size() / kFilterHalf - 2;
    double power = 0.0;
    for (const auto& value : BaseBand(hz).Values(SamplesOf(noise), kFilterTaps, count, kFilterHalf)) {
      power += std::norm(value) / static_cast<double>(count);
    }
    // The mean of 6400 nearly independent powers is 1.3 % off.
    EXPECT_NEAR(1.0, power / (kDeviation * kDeviation * FilteredNoisePower()), 0.05) << hz;
  }
}

TEST(FineBaseBand, ValuesOfDifferentCallsBelongTogether) {
  const Recording noise = MakeNoise(10.0, 1000.0);
  const BaseBand band(tools::kRightToneHz);
  const auto all = band.Values(SamplesOf(noise), 0, 400, 1);
  const auto some = band.Values(SamplesOf(noise), 100, 20, 7);
  for (std::size_t n = 0; n < some.size(); ++n) {
    EXPECT_EQ(all[100 + 7 * n], some[n]) << n;
  }
}

TEST(FineBaseBand, WhatLiesOutsideTheRecordingCountsAsZero) {
  constexpr std::size_t kAround = 200;
  const Recording noise = MakeNoise(5.0, 1000.0);
  Recording padded(kAround);
  padded.insert(padded.end(), noise.begin(), noise.end());
  padded.resize(padded.size() + kAround);
  const BaseBand band(tools::kLeftToneHz);
  const std::size_t count = noise.size() + 200;
  const auto values = band.Values(SamplesOf(noise), -100, count, 1);
  const auto ofPadded = band.Values(SamplesOf(padded), kAround - 100, count, 1);
  for (std::size_t n = 0; n < count; ++n) {
    EXPECT_NEAR(std::abs(ofPadded[n]), std::abs(values[n]), 1e-9) << n;
  }
  EXPECT_EQ(0.0, std::abs(values.front()));
  EXPECT_EQ(std::vector<std::complex<double>>(3), band.Values({}, -1, 3, 1));
}

}  // namespace
}  // namespace orvex::fine
