// The microphone's noise: level, colour and repeatability, and a recording that adds to it.
#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

using namespace std::chrono_literals;

Samples RecordNoise(const RoomConfig& config, std::size_t count = 100000) {
  Room room(config);
  room.StartRecording(0ms);
  return Record(room, count);
}

RoomConfig MakeNoisyRoom(double noiseDbfs) {
  RoomConfig config = MakeBareRoom();
  config.noiseDbfs = noiseDbfs;
  return config;
}

TEST(RoomNoiseTest, HasTheGivenRms) {
  for (const double noiseDbfs : {-70.0, -50.0, -30.0}) {
    EXPECT_NEAR(RmsDbfs(RecordNoise(MakeNoisyRoom(noiseDbfs))), noiseDbfs, 0.1);
  }
}

TEST(RoomNoiseTest, IsWhite) {
  const Samples noise = RecordNoise(MakeNoisyRoom(-40.0));
  const double power = Energy(noise, 0, noise.size());
  for (std::size_t lag = 1; lag <= 5; ++lag) {
    double correlation = 0.0;
    for (std::size_t i = lag; i < noise.size(); ++i) {
      correlation += noise[i] / kFullScale * (noise[i - lag] / kFullScale);
    }
    EXPECT_NEAR(correlation / power, 0.0, 5.0 / std::sqrt(static_cast<double>(noise.size()))) << lag;
  }
}

TEST(RoomNoiseTest, IsNormallyDistributed) {
  const Samples noise = RecordNoise(MakeNoisyRoom(-40.0));
  const double deviation = std::pow(10.0, -40.0 / 20.0) * kFullScale;
  double beyondOne = 0.0;
  double beyondTwo = 0.0;
  for (const std::int16_t sample : noise) {
    beyondOne += std::abs(sample) > deviation ? 1.0 : 0.0;
    beyondTwo += std::abs(sample) > 2.0 * deviation ? 1.0 : 0.0;
  }
  EXPECT_NEAR(beyondOne / static_cast<double>(noise.size()), 0.3173, 0.008);
  EXPECT_NEAR(beyondTwo / static_cast<double>(noise.size()), 0.0455, 0.004);
}

TEST(RoomNoiseTest, WithoutNoiseEverySampleIsZero) {
  const Samples silence = RecordNoise(MakeBareRoom());
  EXPECT_EQ(FirstSound(silence), silence.size());
}

TEST(RoomNoiseTest, TheSameSeedGivesTheSameSamplesAndAnotherSeedOthers) {
  RoomConfig config;
  const Samples first = RecordNoise(config);
  EXPECT_EQ(first, RecordNoise(config));
  config.seed = 2;
  EXPECT_NE(first, RecordNoise(config));
  config.seed = 1 + (std::uint64_t{1} << 32U);
  EXPECT_NE(first, RecordNoise(config));
}

TEST(RoomNoiseTest, EveryRecordingOfARoomHasNoiseOfItsOwn) {
  Room room(MakeNoisyRoom(-40.0));
  room.StartRecording(0ms);
  const Samples first = Record(room, 1000);
  room.StartRecording(1s);
  EXPECT_NE(first, Record(room, 1000));
}

TEST(RoomNoiseTest, ARecordingAtTheMicrophonesRateIsRepeatedUnchanged) {
  RoomConfig config = MakeBareRoom();
  config.noiseFileGainDb = -20.0;
  Room room(config);
  room.SetNoise({0.5F, -0.25F, 0.125F}, kRateHz);
  room.StartRecording(0ms);
  EXPECT_EQ(Record(room, 7), (Samples{1638, -819, 410, 1638, -819, 410, 1638}));
}

TEST(RoomNoiseTest, ARecordingAtAnotherRateKeepsPitchAndLevel) {
  std::vector<float> tone(32000);
  for (std::size_t i = 0; i < tone.size(); ++i) {
    tone[i] = 0.25F * std::sin(static_cast<float>(i % 16) / 16.0F * 6.2831853F);  // 1000 Hz at 16000 Hz
  }
  Room room(MakeBareRoom());
  room.SetNoise(tone, 16000.0);
  room.StartRecording(0ms);
  EXPECT_NEAR(ToneDbfs(Record(room, kSecond), 1000.0, kRateHz, 1000, 46000), 20.0 * std::log10(0.25), 0.1);
}

TEST(RoomNoiseTest, AnEmptyRecordingEndsTheNoise) {
  Room room(MakeBareRoom());
  room.SetNoise({0.5F}, kRateHz);
  room.SetNoise({}, kRateHz);
  room.StartRecording(0ms);
  EXPECT_EQ(Record(room, 3), (Samples{0, 0, 0}));
}

TEST(RoomNoiseTest, ABadRecordingIsRefused) {
  Room room(MakeBareRoom());
  EXPECT_THROW(room.SetNoise({0.0F}, 999.0), std::invalid_argument);
  EXPECT_THROW(room.SetNoise({0.0F}, 1000001.0), std::invalid_argument);
  EXPECT_THROW(room.SetNoise({0.0F}, std::nan("")), std::invalid_argument);
  EXPECT_THROW(room.SetNoise({0.0F, std::nanf("")}, kRateHz), std::invalid_argument);
  EXPECT_THROW(room.SetNoise({std::numeric_limits<float>::infinity()}, kRateHz), std::invalid_argument);
  EXPECT_THROW(room.SetNoise({-1001.0F}, kRateHz), std::invalid_argument);
}

}  // namespace
}  // namespace orvex::sim::test
