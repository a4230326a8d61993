// Which channel is heard when: the television's mute, the muted device, the receiver's lock and the S/PDIF delay.
#include <limits>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

using namespace std::chrono_literals;

constexpr double kSilentDbfs = -90.0;  // a tone below this counts as not heard

Samples MakeTones(std::size_t frames) {
  Samples sound = MakeSilence(frames);
  AddTone(sound, kLeft, 17000.0, -12.0);
  AddTone(sound, kRight, 19000.0, -12.0);
  return sound;
}

double LeftDbfs(const Samples& recording, double fromS, double toS) {
  return ToneDbfs(recording, 17000.0, kRateHz, static_cast<std::size_t>(fromS * kRateHz),
                  static_cast<std::size_t>(toS * kRateHz));
}

double RightDbfs(const Samples& recording, double fromS, double toS) {
  return ToneDbfs(recording, 19000.0, kRateHz, static_cast<std::size_t>(fromS * kRateHz),
                  static_cast<std::size_t>(toS * kRateHz));
}

TEST(RoomAudibilityTest, TheTelevisionsMuteSilencesTheLeftChannelOnly) {
  Room room(MakeBareRoom());
  room.SetTvMuted(true);
  const Samples recording = PlayAndRecord(room, MakeTones(24000), 23000);
  EXPECT_LT(LeftDbfs(recording, 0.1, 0.4), kSilentDbfs);
  EXPECT_NEAR(RightDbfs(recording, 0.1, 0.4), -12.0, 0.1);
}

TEST(RoomAudibilityTest, TheMuteHoldsForFramesThatArePlayedWhileItIsOn) {
  Room room(MakeBareRoom());
  const Samples sound = MakeTones(9600);  // 0.2 s
  room.Play(0ms, sound.data(), 9600);
  room.SetTvMuted(true);
  room.Play(200ms, sound.data(), 9600);
  room.SetTvMuted(false);
  room.Play(400ms, sound.data(), 9600);
  room.StartRecording(0ms);
  const Samples recording = Record(room, 30000);
  EXPECT_NEAR(LeftDbfs(recording, 0.05, 0.15), -12.0, 0.1);
  EXPECT_LT(LeftDbfs(recording, 0.25, 0.35), kSilentDbfs);
  EXPECT_NEAR(LeftDbfs(recording, 0.45, 0.55), -12.0, 0.1);
}

TEST(RoomAudibilityTest, AMutedExternalDeviceSilencesTheRightChannelOnly) {
  RoomConfig config = MakeBareRoom();
  config.opticalMuted = true;
  Room room(config);
  const Samples recording = PlayAndRecord(room, MakeTones(24000), 23000);
  EXPECT_NEAR(LeftDbfs(recording, 0.1, 0.4), -12.0, 0.1);
  EXPECT_LT(RightDbfs(recording, 0.1, 0.4), kSilentDbfs);
}

TEST(RoomAudibilityTest, TheSpdifDelayMovesTheRightChannelOnly) {
  Samples sound = MakeSilence(100);
  AddImpulse(sound, kLeft, 0);
  AddImpulse(sound, kRight, 0);
  Room room(MakeBareRoom());
  room.SetSpdifDelayMs(200.0);
  room.Play(100ms, sound.data(), 100);
  room.StartRecording(0ms);
  const Samples recording = Record(room, 20000);
  EXPECT_NEAR(ArrivalSample(recording, 0, 10000), 0.1 * kRateHz, 0.05);
  EXPECT_NEAR(ArrivalSample(recording, 10000, 20000), 0.3 * kRateHz, 0.05);
}

TEST(RoomAudibilityTest, ASpdifDelayOutOfRangeIsClamped) {
  Samples sound = MakeSilence(100);
  AddImpulse(sound, kRight, 0);
  const struct {
    double delayMs;
    double expectedS;
  } cases[] = {{-5.0, 0.1}, {std::numeric_limits<double>::quiet_NaN(), 0.1}, {4294967295.0, 10.1}};
  for (const auto& delay : cases) {
    Room room(MakeBareRoom());
    room.SetSpdifDelayMs(delay.delayMs);
    EXPECT_NEAR(ArrivalSample(PlayAndRecord(room, sound, 500000, 100ms)), delay.expectedS * kRateHz, 0.05)
        << delay.delayMs;
  }
}

class OpticalLockTest : public testing::Test {
protected:
  static constexpr double kLockS = 0.15;

  OpticalLockTest() : m_Room(MakeLockingRoom()) { m_Room.StartRecording(0ms); }

  static RoomConfig MakeLockingRoom() {
    RoomConfig config = MakeBareRoom();
    config.opticalLockMs = kLockS * 1e3;
    return config;
  }

  Room m_Room;
};

TEST_F(OpticalLockTest, LosesTheStreamsBeginningOnTheOpticalPathOnly) {
  Samples sound = MakeSilence(24000);
  for (std::size_t frame = 0; frame < 24000; ++frame) {
    AddImpulse(sound, kRight, frame, 8000);
  }
  const Samples right = PlayAndRecord(m_Room, sound, 23000);
  EXPECT_NEAR(static_cast<double>(FirstSound(right)), kLockS * kRateHz, 60.0);

  Room room(MakeLockingRoom());
  const Samples both = PlayAndRecord(room, MakeTones(24000), 23000);
  EXPECT_NEAR(LeftDbfs(both, 0.02, 0.13), -12.0, 0.1);
  EXPECT_LT(RightDbfs(both, 0.02, 0.13), kSilentDbfs);
  EXPECT_NEAR(RightDbfs(both, 0.2, 0.4), -12.0, 0.1);
}

TEST_F(OpticalLockTest, SilentFramesLetTheReceiverLock) {
  const Samples silence = MakeSilence(9600);
  m_Room.Play(0ms, silence.data(), 9600);
  const Samples tones = MakeTones(9600);
  m_Room.Play(200ms, tones.data(), 9600);
  EXPECT_NEAR(RightDbfs(Record(m_Room, 20000), 0.21, 0.39), -12.0, 0.1);
}

TEST_F(OpticalLockTest, ASplitStreamLocksOnce) {
  const Samples tones = MakeTones(4800);  // 0.1 s
  for (int i = 0; i < 4; ++i) {
    m_Room.Play(i * 100ms, tones.data(), 4800);
  }
  const Samples recording = Record(m_Room, 20000);
  EXPECT_LT(RightDbfs(recording, 0.02, 0.13), kSilentDbfs);
  EXPECT_NEAR(RightDbfs(recording, 0.21, 0.29), -12.0, 0.1);
  EXPECT_NEAR(RightDbfs(recording, 0.31, 0.39), -12.0, 0.1);
}

TEST_F(OpticalLockTest, OnlyALongPauseMakesItLockAgain) {
  const Samples tones = MakeTones(14400);  // 0.3 s
  m_Room.Play(0ms, tones.data(), 14400);
  m_Room.Play(350ms, tones.data(), 14400);  // 50 ms of pause
  m_Room.Play(701ms, tones.data(), 14400);  // 51 ms
  const Samples recording = Record(m_Room, 50000);
  EXPECT_NEAR(RightDbfs(recording, 0.37, 0.48), -12.0, 0.1);
  EXPECT_LT(RightDbfs(recording, 0.73, 0.83), kSilentDbfs);
  EXPECT_NEAR(RightDbfs(recording, 0.88, 0.98), -12.0, 0.1);
}

TEST_F(OpticalLockTest, AStoppedDeviceEndsTheStream) {
  const Samples tones = MakeTones(14400);  // 0.3 s
  m_Room.Play(0ms, tones.data(), 14400);
  m_Room.CutPlayback(200ms);
  m_Room.Play(300ms, tones.data(), 14400);
  const Samples recording = Record(m_Room, 30000);
  EXPECT_LT(RightDbfs(recording, 0.32, 0.43), kSilentDbfs);
  EXPECT_NEAR(LeftDbfs(recording, 0.32, 0.43), -12.0, 0.1);
}

}  // namespace
}  // namespace orvex::sim::test
