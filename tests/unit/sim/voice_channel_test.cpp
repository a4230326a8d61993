// When the remote delivers its blocks, which of them are lost, and when it falls silent.
#include "orvex/sim/voice_channel.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

using namespace std::chrono_literals;

constexpr double kBlockS = kVoiceBlockSamples / kVoiceRateHz;

RoomConfig MakeVoiceRoom() {
  RoomConfig config = MakeBareRoom();
  config.voiceLatencyMs = 0.0;
  return config;
}

double Seconds(Time time) {
  return static_cast<double>(time.count()) * 1e-9;
}

// A remote, and what it has delivered.
class Remote {
public:
  explicit Remote(const RoomConfig& config) : m_Room(config), m_Voice(m_Room) {}

  VoiceChannel& Voice() { return m_Voice; }
  Room& GetRoom() { return m_Room; }
  const std::vector<Time>& Times() const { return m_Times; }
  const std::vector<bool>& Arrived() const { return m_Arrived; }
  const VoiceChannel::Block& LastBlock() const { return m_Block; }

  // Takes all blocks that are due until `end`.
  void RunUntil(Time end) {
    for (std::optional<Time> due = m_Voice.NextDelivery(); due && *due <= end; due = m_Voice.NextDelivery()) {
      m_Times.push_back(*due);
      m_Arrived.push_back(m_Voice.TakeBlock(m_Block));
    }
  }

private:
  Room m_Room;
  VoiceChannel m_Voice;
  VoiceChannel::Block m_Block{};
  std::vector<Time> m_Times;
  std::vector<bool> m_Arrived;
};

TEST(VoiceChannelTest, DeliversABlockWhenItIsCompleteAndTheLatencyHasPassed) {
  RoomConfig config = MakeVoiceRoom();
  config.voiceLatencyMs = 30.0;
  Remote remote(config);
  remote.Voice().Start(2s);
  remote.RunUntil(4s);
  ASSERT_EQ(remote.Times().size(), static_cast<std::size_t>((2.0 - 0.03) / kBlockS));
  for (std::size_t k = 0; k < remote.Times().size(); ++k) {
    EXPECT_NEAR(Seconds(remote.Times()[k]), 2.0 + static_cast<double>(k + 1) * kBlockS + 0.03, 1e-8);
  }
}

TEST(VoiceChannelTest, ARateErrorChangesThePaceOfTheBlocks) {
  RoomConfig config = MakeVoiceRoom();
  config.rateErrorPpm = 10000.0;
  Remote remote(config);
  remote.Voice().Start(0s);
  remote.RunUntil(5s);
  ASSERT_GT(remote.Times().size(), 250U);
  EXPECT_NEAR(Seconds(remote.Times()[249]), 250.0 * kBlockS / 1.01, 1e-8);
}

TEST(VoiceChannelTest, TheBlocksCarryTheRoomsSamplesInOrder) {
  Remote remote(MakeVoiceRoom());
  Samples sound = MakeSilence(10);
  AddImpulse(sound, kLeft, 0);
  remote.GetRoom().Play(1s + 50ms, sound.data(), 10);
  remote.Voice().Start(1s);
  remote.RunUntil(1s + 60ms);  // 0.05 s lie in block 3
  ASSERT_EQ(remote.Times().size(), 3U);
  remote.RunUntil(1s + 70ms);
  ASSERT_EQ(remote.Times().size(), 4U);
  const Samples block(remote.LastBlock().begin(), remote.LastBlock().end());
  EXPECT_NEAR(ArrivalSample(block), 0.05 * kRateHz - 3.0 * kVoiceBlockSamples, 0.2);
}

TEST(VoiceChannelTest, JitterDelaysBlocksAndKeepsTheirOrder) {
  RoomConfig config = MakeVoiceRoom();
  config.voiceJitterMs = 40.0;
  config.voiceWindowMs = 20000.0;
  Remote remote(config);
  remote.Voice().Start(0s);
  remote.RunUntil(16s);
  ASSERT_GT(remote.Times().size(), 900U);
  double sum = 0.0;
  double most = 0.0;
  for (std::size_t k = 0; k < remote.Times().size(); ++k) {
    const double late = Seconds(remote.Times()[k]) - static_cast<double>(k + 1) * kBlockS;
    EXPECT_GE(late, -1e-8);
    EXPECT_LE(late, 0.040 + 1e-8);
    EXPECT_TRUE(k == 0 || remote.Times()[k] >= remote.Times()[k - 1]);
    sum += late;
    most = std::max(most, late);
  }
  EXPECT_GT(most, 0.035);
  // If blocks could overtake each other, the mean would be 20 ms; waiting for the block ahead can only add to it.
  EXPECT_NEAR(sum / static_cast<double>(remote.Times().size()), 0.023, 0.004);
}

TEST(VoiceChannelTest, LosesBlocksWithTheGivenProbabilityAndGoesOnAfterThem) {
  for (const double probability : {0.0, 0.1, 0.5, 1.0}) {
    RoomConfig config = MakeVoiceRoom();
    config.voiceLossProbability = probability;
    config.voiceWindowMs = 40000.0;
    Remote remote(config);
    remote.Voice().Start(0s);
    remote.RunUntil(40s);
    const double count = static_cast<double>(remote.Arrived().size());
    double lost = 0.0;
    for (const bool arrived : remote.Arrived()) {
      lost += arrived ? 0.0 : 1.0;
    }
    ASSERT_GT(count, 2000.0);
    const double deviation = std::sqrt(probability * (1.0 - probability) / count);
    EXPECT_NEAR(lost / count, probability, 4.0 * deviation) << probability;
  }
}

TEST(VoiceChannelTest, ALostBlockLeavesTheCallersSamplesAndTakesItsTime) {
  RoomConfig config = MakeVoiceRoom();
  config.voiceLossProbability = 1.0;
  config.noiseDbfs = -20.0;
  Remote remote(config);
  remote.Voice().Start(0s);
  remote.RunUntil(100ms);
  EXPECT_EQ(remote.Times().size(), 6U);
  EXPECT_EQ(remote.LastBlock(), VoiceChannel::Block{});
}

TEST(VoiceChannelTest, FallsSilentAfterItsWindow) {
  Remote remote(MakeVoiceRoom());
  remote.Voice().Start(1s);
  remote.RunUntil(100s);
  EXPECT_EQ(remote.Times().size(), static_cast<std::size_t>(6.0 / kBlockS));
  remote.Voice().Extend(8s);  // too late
  EXPECT_FALSE(remote.Voice().NextDelivery());
}

TEST(VoiceChannelTest, AnExtendOpensTheWindowAnew) {
  Remote remote(MakeVoiceRoom());
  remote.Voice().Start(0s);
  remote.RunUntil(4s);
  remote.Voice().Extend(4s);
  remote.RunUntil(100s);
  EXPECT_EQ(remote.Times().size(), static_cast<std::size_t>(10.0 / kBlockS));
}

TEST(VoiceChannelTest, NothingIsDeliveredAfterAStop) {
  RoomConfig config = MakeVoiceRoom();
  config.voiceLatencyMs = 30.0;
  Remote remote(config);
  VoiceChannel::Block block;
  EXPECT_FALSE(remote.Voice().NextDelivery());
  EXPECT_THROW(remote.Voice().TakeBlock(block), std::logic_error);
  remote.Voice().Start(0s);
  remote.RunUntil(500ms);
  EXPECT_TRUE(remote.Voice().NextDelivery());
  remote.Voice().Stop();
  remote.Voice().Extend(500ms);
  EXPECT_FALSE(remote.Voice().NextDelivery());
  EXPECT_THROW(remote.Voice().TakeBlock(block), std::logic_error);
}

TEST(VoiceChannelTest, AStartAfterAStopBeginsANewRecording) {
  Remote remote(MakeVoiceRoom());
  remote.Voice().Start(0s);
  remote.RunUntil(500ms);
  remote.Voice().Stop();
  remote.Voice().Start(1s);
  ASSERT_TRUE(remote.Voice().NextDelivery());
  EXPECT_NEAR(Seconds(*remote.Voice().NextDelivery()), 1.0 + kBlockS, 1e-8);
}

TEST(VoiceChannelTest, ARemoteCanFallSilentForGood) {
  RoomConfig config = MakeVoiceRoom();
  config.silentAfterMs = 2000.0;
  Remote remote(config);
  remote.Voice().Start(0s);
  remote.RunUntil(1s);
  remote.Voice().Extend(1s);
  remote.RunUntil(100s);
  EXPECT_EQ(remote.Times().size(), static_cast<std::size_t>(2.0 / kBlockS));
}

TEST(VoiceChannelTest, TheSameSeedGivesTheSameSchedule) {
  RoomConfig config = MakeVoiceRoom();
  config.voiceJitterMs = 10.0;
  config.voiceLossProbability = 0.3;
  Remote first(config);
  Remote second(config);
  config.seed = 2;
  Remote other(config);
  for (Remote* remote : {&first, &second, &other}) {
    remote->Voice().Start(0s);
    remote->RunUntil(5s);
  }
  EXPECT_EQ(first.Times(), second.Times());
  EXPECT_EQ(first.Arrived(), second.Arrived());
  EXPECT_NE(first.Times(), other.Times());
  EXPECT_NE(first.Arrived(), other.Arrived());
}

}  // namespace
}  // namespace orvex::sim::test
