// The real misalignment and its sign.
#include "orvex/sim/truth.h"

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

TEST(TruthTest, IsPositiveWhenTheOpticalOutputIsLate) {
  RoomConfig config = MakeBareRoom();
  config.optical.latencyMs = 30.0;
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 0.0), 30.0);
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 100.0), 130.0);
  config.tv.latencyMs = 50.0;
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 0.0), -20.0);
}

TEST(TruthTest, CountsTheWayThroughTheAir) {
  RoomConfig config = MakeBareRoom();
  config.optical.distanceM = 3.43;
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 0.0), 10.0);
  config.tv.distanceM = 6.86;
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 0.0), -10.0);
}

TEST(TruthTest, SubtractingItFromTheDelayAlignsBothOutputs) {
  const RoomConfig config;
  const double delayMs = 100.0 - MisalignmentMs(config, 100.0);
  EXPECT_GE(delayMs, 0.0);
  EXPECT_NEAR(MisalignmentMs(config, delayMs), 0.0, 1e-9);
}

TEST(TruthTest, TheDefaultRoomHasSomethingToCorrect) {
  EXPECT_NEAR(MisalignmentMs(RoomConfig(), 100.0), 40.0, 1e-9);
}

TEST(TruthTest, ClampsTheDelayAsTheOutputDoes) {
  const RoomConfig config = MakeBareRoom();
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 10000.0), 10000.0);
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, 4294967295.0), 10000.0);
  EXPECT_DOUBLE_EQ(MisalignmentMs(config, -5.0), 0.0);
}

TEST(TruthTest, IsWhatTheMicrophoneHears) {
  RoomConfig config = MakeBareRoom();
  config.tv.latencyMs = 60.0;
  config.tv.distanceM = 3.0;
  config.optical.latencyMs = 15.0;
  config.optical.distanceM = 1.5;
  constexpr double kDelayMs = 120.0;
  double arrival[2] = {0.0, 0.0};
  for (const std::size_t channel : {kLeft, kRight}) {
    Room room(config);
    room.SetSpdifDelayMs(kDelayMs);
    Samples sound = MakeSilence(10);
    AddImpulse(sound, channel, 0);
    arrival[channel] = ArrivalSample(PlayAndRecord(room, sound, 10000));
  }
  const double heardMs = (arrival[kRight] - arrival[kLeft]) / kRateHz * 1e3;
  EXPECT_NEAR(heardMs, MisalignmentMs(config, kDelayMs), 0.003);
}

}  // namespace
}  // namespace orvex::sim::test
