// Listed audio faults as a program meets them through libasound.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>

#include "unit/virtual/pcm_player.h"
#include "unit/virtual/pcm_television.h"

namespace orvex::virtual_tv {
namespace {

class HostPcmFault : public PcmTelevision {
protected:
  // A player that has written until the fault struck; `result` is what the program then got.
  void PlayUntil(const std::string& faults, snd_pcm_sframes_t result) {
    Write("faults.json", faults);
    m_Player.emplace();
    ASSERT_EQ(m_Player->OpenResult(), 0);
    ASSERT_EQ(m_Player->Configure(), 0);
    const auto sound = PcmPlayer::Silence(24000);
    ASSERT_EQ(result == -EPIPE ? m_Player->Write(sound) : m_Player->WriteThrough(sound), result);
  }
  snd_pcm_t* Pcm() const { return m_Player->Pcm(); }

  std::optional<PcmPlayer> m_Player;
};

TEST_F(HostPcmFault, AnOpenFailsAsListedAndSucceedsAfterwards) {
  Write("faults.json", R"({"pcm.open": [-16, -2]})");
  EXPECT_EQ(PcmPlayer().OpenResult(), -EBUSY);
  EXPECT_EQ(PcmPlayer().OpenResult(), -ENOENT);
  EXPECT_EQ(PcmPlayer().OpenResult(), 0);
}

TEST_F(HostPcmFault, AnUnderrunIsRecovered) {
  PlayUntil(R"({"pcm.underrun_at_frame": [6000]})", -EPIPE);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_XRUN);
  ASSERT_EQ(snd_pcm_recover(Pcm(), -EPIPE, 1), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(HostPcmFault, ASuspendedDeviceGoesOnAfterAResume) {
  PlayUntil(R"({"pcm.suspend_at_frame": [6000]})", -ESTRPIPE);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SUSPENDED);
  ASSERT_EQ(snd_pcm_resume(Pcm()), 0);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_RUNNING);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(HostPcmFault, ADisconnectedDeviceStaysAwayUntilItIsOpenedAnew) {
  PlayUntil(R"({"pcm.disconnect_at_frame": [6000]})", -ENODEV);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_DISCONNECTED);
  EXPECT_EQ(snd_pcm_drop(Pcm()), -ENODEV);
  EXPECT_EQ(snd_pcm_prepare(Pcm()), -ENODEV);
  m_Player.emplace();  // closes it first
  ASSERT_EQ(m_Player->Configure(), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(HostPcmFault, AStalledDeviceTakesNothingUntilItIsStopped) {
  Write("faults.json", R"({"pcm.stall_at_frame": [6000]})");
  m_Player.emplace();
  ASSERT_EQ(m_Player->Configure(), 0);
  auto writer = std::async(std::launch::async, [&] { return m_Player->WriteThrough(PcmPlayer::Silence(24000)); });
  // Stands still with 6000 frames played and a buffer behind them; the writer then waits for room that never comes.
  EXPECT_EQ(writer.wait_for(std::chrono::seconds(1)), std::future_status::timeout);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_RUNNING);
  EXPECT_EQ(snd_pcm_drop(Pcm()), 0);
  EXPECT_EQ(writer.get(), -EBADFD);
  ASSERT_EQ(snd_pcm_prepare(Pcm()), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(HostPcmFault, AStalledDeviceDoesNotHoldADrainForEver) {
  Write("faults.json", R"({"pcm.stall_at_frame": [1000]})");
  m_Player.emplace();
  ASSERT_EQ(m_Player->Configure(), 0);
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(4000)), 4000);
  snd_pcm_drain(Pcm());
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
}

TEST_F(HostPcmFault, EveryListedFrameStrikesOnceInOrder) {
  PlayUntil(R"({"pcm.underrun_at_frame": [6000], "pcm.suspend_at_frame": [9000]})", -EPIPE);
  ASSERT_EQ(snd_pcm_recover(Pcm(), -EPIPE, 1), 0);
  ASSERT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(24000)), -ESTRPIPE);
  ASSERT_EQ(snd_pcm_resume(Pcm()), 0);
  m_Player.emplace();  // closes it first
  ASSERT_EQ(m_Player->Configure(), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

}  // namespace
}  // namespace orvex::virtual_tv
