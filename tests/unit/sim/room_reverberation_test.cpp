// The tail has the decay time and the level that the room's configuration gives it.
#include <cmath>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

constexpr double kLatencyMs = 10.0;
constexpr double kArrival = kLatencyMs * 1e-3 * kRateHz;
// Direct sound and its filter's ringing lie before this, the tail after it.
constexpr auto kTailBegin = static_cast<std::size_t>(kArrival + 0.0025 * kRateHz);

RoomConfig MakeReverberantRoom(double rt60S, double directToReverberantDb, std::uint64_t seed) {
  RoomConfig config = MakeBareRoom();
  for (PathConfig* path : {&config.tv, &config.optical}) {
    path->latencyMs = kLatencyMs;
    path->rt60S = rt60S;
    path->directToReverberantDb = directToReverberantDb;
  }
  config.seed = seed;
  return config;
}

Samples RecordImpulse(const RoomConfig& config, std::size_t channel, double seconds) {
  Room room(config);
  Samples sound = MakeSilence(1);
  AddImpulse(sound, channel, 0);
  return PlayAndRecord(room, sound, static_cast<std::size_t>(seconds * kRateHz));
}

// How long the energy that is still to come takes to fall from `fromDb` to `toDb`, relative to that of the whole tail.
double DecayS(const Samples& recording, double fromDb, double toDb) {
  const double total = Energy(recording, kTailBegin, recording.size());
  double rest = total;
  double reachedFrom = 0.0;
  for (std::size_t i = kTailBegin; i < recording.size(); ++i) {
    const double level = 10.0 * std::log10(rest / total);
    if (reachedFrom == 0.0 && level <= fromDb) {
      reachedFrom = static_cast<double>(i);
    }
    if (level <= toDb) {
      return (static_cast<double>(i) - reachedFrom) / kRateHz;
    }
    rest -= Energy(recording, i, i + 1);
  }
  return 0.0;
}

TEST(RoomReverberationTest, TheTailFallsBySixtyDecibelsInTheReverberationTimeWithinATenth) {
  for (const double rt60S : {0.2, 0.4, 0.8}) {
    for (const std::size_t channel : {kLeft, kRight}) {
      const Samples recording = RecordImpulse(MakeReverberantRoom(rt60S, -6.0, 1), channel, rt60S + 0.1);
      EXPECT_NEAR(DecayS(recording, -5.0, -35.0) * 2.0, rt60S, 0.1 * rt60S) << rt60S << " s, channel " << channel;
    }
  }
}

TEST(RoomReverberationTest, TheTailEndsAfterTheReverberationTime) {
  const Samples recording = RecordImpulse(MakeReverberantRoom(0.2, -10.0, 1), kLeft, 1.0);
  EXPECT_NEAR(static_cast<double>(LastSound(recording)), kArrival + (0.2 + 0.003) * kRateHz, 0.01 * kRateHz);
}

TEST(RoomReverberationTest, DirectSoundOverTailIsTheRatioWithinOneDecibel) {
  for (const double ratioDb : {-6.0, 0.0, 6.0, 12.0}) {
    for (const std::uint64_t seed : {1U, 2U, 3U}) {
      const Samples recording = RecordImpulse(MakeReverberantRoom(0.4, ratioDb, seed), kLeft, 0.6);
      const double direct = Energy(recording, 0, kTailBegin);
      const double tail = Energy(recording, kTailBegin, recording.size());
      EXPECT_NEAR(10.0 * std::log10(direct / tail), ratioDb, 1.0) << "seed " << seed;
    }
  }
}

TEST(RoomReverberationTest, TheTailHasAsMuchPositiveAsNegativePressure) {
  const Samples recording = RecordImpulse(MakeReverberantRoom(0.4, -6.0, 1), kLeft, 0.6);
  double sum = 0.0;
  double magnitude = 0.0;
  for (std::size_t i = kTailBegin; i < recording.size(); ++i) {
    sum += recording[i];
    magnitude += std::abs(recording[i]);
  }
  EXPECT_LT(std::abs(sum), 0.15 * magnitude);
}

TEST(RoomReverberationTest, EverySeedAndEveryPathHasATailOfItsOwn) {
  const Samples tv = RecordImpulse(MakeReverberantRoom(0.4, 0.0, 1), kLeft, 0.6);
  EXPECT_EQ(tv, RecordImpulse(MakeReverberantRoom(0.4, 0.0, 1), kLeft, 0.6));
  EXPECT_NE(tv, RecordImpulse(MakeReverberantRoom(0.4, 0.0, 2), kLeft, 0.6));
  EXPECT_NE(tv, RecordImpulse(MakeReverberantRoom(0.4, 0.0, 1), kRight, 0.6));
}

TEST(RoomReverberationTest, WithoutReverberationTimeThereIsNoTail) {
  const Samples recording = RecordImpulse(MakeReverberantRoom(0.0, -20.0, 1), kLeft, 0.6);
  EXPECT_LT(static_cast<double>(LastSound(recording)), kArrival + 100.0);
}

}  // namespace
}  // namespace orvex::sim::test
