// The burst's envelope and its filtered rise, against the sums that define them.
#include "fine/burst_shape.h"

#include <gtest/gtest.h>

#include <cmath>

#include "fine/base_band.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::fine {
namespace {

constexpr double kTableStepS = 2e-6;

double Filtered(double s, const tools::SoundDesign& sound) {
  double sum = 0.0;
  for (int n = 0; n < kFilterTaps; ++n) {
    sum += LowPass()[static_cast<std::size_t>(n)] * BurstEnvelope(s - (n - kFilterHalf) / kVoiceRateHz, sound);
  }
  return sum;
}

TEST(FineBurstShape, RampsAreRaisedCosines) {
  const tools::SoundDesign sound;
  const double end = sound.burstMs * 1e-3;
  for (const double ms : {-1.0, 0.0, sound.burstMs, 100.0}) {
    EXPECT_EQ(0.0, BurstEnvelope(ms * 1e-3, sound)) << ms;
  }
  for (const double ms : {0.1, 0.625, 1.25, 2.0}) {
    const double expected = 0.5 - 0.5 * std::cos(tools::kPi * ms / sound.rampMs);
    EXPECT_NEAR(expected, BurstEnvelope(ms * 1e-3, sound), 1e-12) << ms;
    EXPECT_NEAR(expected, BurstEnvelope(end - ms * 1e-3, sound), 1e-12) << ms;
  }
  EXPECT_NEAR(1.0, BurstEnvelope(sound.rampMs * 1e-3, sound), 1e-12);
  EXPECT_NEAR(1.0, BurstEnvelope(9e-3, sound), 1e-12);
}

TEST(FineBurstShape, FilteredRiseIsTheFilterAppliedToTheEnvelope) {
  for (const double rampMs : {1.0, 2.5}) {
    tools::SoundDesign sound;
    sound.rampMs = rampMs;
    const FilteredBurst burst(sound);
    for (double s = -2e-3; s < 10e-3; s += 3.7e-5) {
      EXPECT_NEAR(Filtered(s, sound), burst(s), 3e-6) << s;
    }
  }
}

TEST(FineBurstShape, WhatComesLaterCountsAsPlateau) {
  const tools::SoundDesign sound;
  EXPECT_EQ(1.0, FilteredBurst(sound)(sound.burstMs * 1e-3));
}

TEST(FineBurstShape, TimeOfIsTheInverseOfTheRise) {
  const tools::SoundDesign sound;
  const FilteredBurst burst(sound);
  for (const double share : {0.01, 0.1, 0.25, 0.5, 0.75, 0.9, 0.99}) {
    const double s = burst.TimeOf(share);
    EXPECT_GE(burst(s) + 1e-9, share);
    EXPECT_LE(burst(s - 1.001 * kTableStepS), share);
  }
  EXPECT_NEAR(0.5e-3 * sound.rampMs, burst.TimeOf(0.5), kTableStepS);
}

}  // namespace
}  // namespace orvex::fine
