// Tones reach the microphone at the source's level plus the path's gain.
#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

struct LevelCase {
  const char* name;
  double frequencyHz;
  double sourceDbfs;
  double gainDb;
  double latencyMs;
  double rateErrorPpm;
};

class ToneLevelTest : public testing::TestWithParam<LevelCase> {};

TEST_P(ToneLevelTest, IsSourcePlusGainWithinATenthOfADecibel) {
  const LevelCase& level = GetParam();
  RoomConfig config = MakeBareRoom();
  config.rateErrorPpm = level.rateErrorPpm;
  config.tv.gainDb = config.optical.gainDb = level.gainDb;
  config.tv.latencyMs = config.optical.latencyMs = level.latencyMs;
  for (const std::size_t channel : {kLeft, kRight}) {
    Room room(config);
    Samples sound = MakeSilence(24000);
    AddTone(sound, channel, level.frequencyHz, level.sourceDbfs);
    const Samples recording = PlayAndRecord(room, sound, 20000);
    EXPECT_NEAR(ToneDbfs(recording, level.frequencyHz, ActualMicrophoneRateHz(config), 4000, 20000),
                level.sourceDbfs + level.gainDb, 0.1);
  }
}

INSTANTIATE_TEST_SUITE_P(Tones, ToneLevelTest,
                         testing::Values(LevelCase{"LowTone", 1000, -6, 0, 0, 0}, LevelCase{"T17", 17000, -6, 0, 0, 0},
                                         LevelCase{"T19", 19000, -6, 0, 0, 0},
                                         LevelCase{"T17Damped", 17000, -10, -20, 0, 0},
                                         LevelCase{"T19Damped", 19000, -10, -20, 0, 0},
                                         LevelCase{"T19Amplified", 19000, -40, 30, 0, 0},
                                         LevelCase{"T17BetweenFrames", 17000, -6, 0, 10.0104, 0},
                                         LevelCase{"T19BetweenFrames", 19000, -6, 0, 10.0104, 0},
                                         LevelCase{"T19FastClock", 19000, -6, 0, 0.005, 10000},
                                         LevelCase{"T19SlowClock", 19000, -6, 0, 0.005, -10000}),
                         [](const auto& instance) { return instance.param.name; });

TEST(RoomLevelTest, ASteadyToneThroughAReflectionInPhaseIsTheSumOfBoth) {
  RoomConfig config = MakeBareRoom();
  config.tv.reflections = {{1000.0 / 17000.0 * 100.0, -6.0206}};  // 100 periods later at half the amplitude
  Room room(config);
  Samples sound = MakeSilence(24000);
  AddTone(sound, kLeft, 17000.0, -20.0);
  EXPECT_NEAR(ToneDbfs(PlayAndRecord(room, sound, 20000), 17000.0, kRateHz, 4000, 20000), -20.0 + 3.5218, 0.1);
}

TEST(RoomLevelTest, BothChannelsAddUpAtTheMicrophone) {
  RoomConfig config = MakeBareRoom();
  config.tv.gainDb = -12.0;
  config.optical.gainDb = -18.0;
  Room room(config);
  Samples sound = MakeSilence(24000);
  AddTone(sound, kLeft, 17000.0, -6.0);
  AddTone(sound, kRight, 19000.0, -6.0);
  const Samples recording = PlayAndRecord(room, sound, 20000);
  EXPECT_NEAR(ToneDbfs(recording, 17000.0, kRateHz, 4000, 20000), -18.0, 0.1);
  EXPECT_NEAR(ToneDbfs(recording, 19000.0, kRateHz, 4000, 20000), -24.0, 0.1);
}

TEST(RoomLevelTest, WhatIsTooLoudIsClippedAtSixteenBits) {
  RoomConfig config = MakeBareRoom();
  config.tv.gainDb = 20.0;
  Room room(config);
  Samples sound = MakeSilence(9600);
  AddTone(sound, kLeft, 100.0, -6.0);
  const Samples recording = PlayAndRecord(room, sound, 9309);  // 20 periods
  int high = 0;
  int low = 0;
  for (const std::int16_t sample : recording) {
    high += sample == 32767 ? 1 : 0;
    low += sample == -32768 ? 1 : 0;
  }
  // A sine of five times full scale is beyond it for 1 - 2/pi * asin(1/5.01) = 87 % of the time.
  EXPECT_NEAR(high, 0.436 * 9309, 40);
  EXPECT_NEAR(low, 0.436 * 9309, 40);
}

// Without an anti-aliasing filter, 22500 Hz would be recorded as 17500 Hz.
TEST(RoomLevelTest, WhatLiesAboveHalfTheMicrophonesRateDoesNotFoldBack) {
  RoomConfig config = MakeBareRoom();
  config.microphoneRateHz = 40000.0;
  Room room(config);
  Samples sound = MakeSilence(24000);
  AddTone(sound, kLeft, 22500.0, -6.0);
  EXPECT_LT(ToneDbfs(PlayAndRecord(room, sound, 20000), 17500.0, 40000.0, 4000, 20000), -80.0);
}

}  // namespace
}  // namespace orvex::sim::test
