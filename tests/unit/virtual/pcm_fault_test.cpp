// Listed audio faults as a program meets them through libasound.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>

#include "unit/virtual/pcm_player.h"
#include "unit/virtual/pcm_television.h"

namespace orvex::virtual_tv {
namespace {

class PcmFaults : public PcmTelevision {
protected:
  // Opens the device, after closing it when it is open.
  void Open() {
    m_Player.emplace();
    ASSERT_EQ(m_Player->OpenResult(), 0);
    ASSERT_EQ(m_Player->Configure(), 0);
  }
  // Plays until the fault happens; `result` is what the program then gets.
  void PlayUntil(const std::string& faults, snd_pcm_sframes_t result) {
    SetFaults(faults);
    Open();
    const auto sound = PcmPlayer::Silence(24000);
    ASSERT_EQ(result == -EPIPE ? m_Player->Write(sound) : m_Player->WriteThrough(sound), result);
  }
  snd_pcm_t* Pcm() const { return m_Player->Pcm(); }

  std::optional<PcmPlayer> m_Player;
};

TEST_F(PcmFaults, AnOpenFailsAsListedAndSucceedsAfterwards) {
  SetFaults(R"({"pcm.open": [-16, -2]})");
  EXPECT_EQ(PcmPlayer().OpenResult(), -EBUSY);
  EXPECT_EQ(PcmPlayer().OpenResult(), -ENOENT);
  EXPECT_EQ(PcmPlayer().OpenResult(), 0);
}

TEST_F(PcmFaults, AnUnderrunIsRecovered) {
  PlayUntil(R"({"pcm.underrun_at_frame": [6000]})", -EPIPE);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_XRUN);
  ASSERT_EQ(snd_pcm_recover(Pcm(), -EPIPE, 1), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(PcmFaults, ASuspendedDeviceGoesOnAfterAResume) {
  PlayUntil(R"({"pcm.suspend_at_frame": [6000]})", -ESTRPIPE);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SUSPENDED);
  ASSERT_EQ(snd_pcm_resume(Pcm()), 0);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_RUNNING);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(PcmFaults, ADisconnectedDeviceStaysAwayUntilItIsOpenedAnew) {
  PlayUntil(R"({"pcm.disconnect_at_frame": [6000]})", -ENODEV);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_DISCONNECTED);
  EXPECT_EQ(snd_pcm_drop(Pcm()), -ENODEV);
  EXPECT_EQ(snd_pcm_prepare(Pcm()), -ENODEV);
  Open();
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(PcmFaults, AStalledDeviceTakesNothingUntilItIsStopped) {
  SetFaults(R"({"pcm.stall_at_frame": [6000]})");
  Open();
  auto writer = std::async(std::launch::async, [&] { return m_Player->WriteThrough(PcmPlayer::Silence(24000)); });
  // Stands still with 6000 frames played and a buffer behind them; the writer then waits for room that never comes.
  EXPECT_EQ(writer.wait_for(std::chrono::seconds(1)), std::future_status::timeout);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_RUNNING);
  EXPECT_EQ(snd_pcm_drop(Pcm()), 0);
  EXPECT_EQ(writer.get(), -EBADFD);
  ASSERT_EQ(snd_pcm_prepare(Pcm()), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

TEST_F(PcmFaults, AStalledDeviceDoesNotHoldADrainForEver) {
  SetFaults(R"({"pcm.stall_at_frame": [1000]})");
  Open();
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(4000)), 4000);
  snd_pcm_drain(Pcm());
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
}

TEST_F(PcmFaults, EveryListedFaultHappensOnceAndInOrder) {
  PlayUntil(R"({"pcm.underrun_at_frame": [6000], "pcm.suspend_at_frame": [9000]})", -EPIPE);
  ASSERT_EQ(snd_pcm_recover(Pcm(), -EPIPE, 1), 0);
  ASSERT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(24000)), -ESTRPIPE);
  ASSERT_EQ(snd_pcm_resume(Pcm()), 0);
  Open();
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(12000)), 12000);
}

}  // namespace
}  // namespace orvex::virtual_tv
