// The virtual sound device as a program sees it through libasound.
#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <optional>

#include "unit/virtual/pcm_player.h"
#include "unit/virtual/pcm_television.h"

namespace orvex::virtual_tv {
namespace {

using Seconds = std::chrono::duration<double>;

// Far more than a busy machine needs; only a hang takes longer.
constexpr Seconds kGenerous(20.0);

Seconds Since(std::chrono::steady_clock::time_point start) {
  return std::chrono::steady_clock::now() - start;
}

class PcmDevice : public PcmTelevision {
protected:
  void SetUp() override {
    PcmTelevision::SetUp();
    if (!IsSkipped()) {
      m_Player.emplace();
      ASSERT_EQ(m_Player->OpenResult(), 0);
      ASSERT_EQ(m_Player->Configure(), 0);
    }
  }
  snd_pcm_t* Pcm() const { return m_Player->Pcm(); }

  std::optional<PcmPlayer> m_Player;
};

TEST_F(PcmDevice, TakesTheServicesParameters) {
  EXPECT_EQ(m_Player->BufferFrames(), 4915U);
  EXPECT_EQ(m_Player->PeriodFrames(), 1228U);
  EXPECT_EQ(snd_pcm_frames_to_bytes(Pcm(), 1), 4);
}

TEST_F(PcmDevice, RestsInSetupAfterADropAndRefusesToWriteBeforeAPrepare) {
  ASSERT_EQ(snd_pcm_drop(Pcm()), 0);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
  EXPECT_EQ(m_Player->Write(PcmPlayer::Silence(10)), -EBADFD);
  ASSERT_EQ(snd_pcm_prepare(Pcm()), 0);
  EXPECT_EQ(m_Player->Write(PcmPlayer::Silence(10)), 10);
}

TEST_F(PcmDevice, StartsByItselfWithHalfABuffer) {
  m_Player->Write(PcmPlayer::Silence(2456));
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_PREPARED);
  m_Player->Write(PcmPlayer::Silence(1));
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_RUNNING);
}

TEST_F(PcmDevice, HalfASecondOfSoundTakesHalfASecond) {
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(24000)), 24000);
  EXPECT_GE(Since(start), Seconds((24000.0 - 4915.0) / 48000.0));
  ASSERT_EQ(snd_pcm_drain(Pcm()), 0);
  EXPECT_GE(Since(start), Seconds(0.5));
  EXPECT_LT(Since(start), kGenerous);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
}

TEST_F(PcmDevice, DrainsAFullBufferToItsEnd) {
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(4915)), 4915);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(snd_pcm_drain(Pcm()), 0);
  EXPECT_LT(Since(start), kGenerous);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
}

TEST_F(PcmDevice, ADrainThatDoesNotBlockWakesItsWaiterAtTheEnd) {
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(4915)), 4915);
  ASSERT_EQ(snd_pcm_nonblock(Pcm(), 1), 0);
  pollfd descriptor{};
  ASSERT_EQ(snd_pcm_poll_descriptors(Pcm(), &descriptor, 1), 1);
  int waits = 0;
  while (snd_pcm_drain(Pcm()) == -EAGAIN && waits < 1000) {
    ASSERT_EQ(::poll(&descriptor, 1, 10000), 1);
    ++waits;
  }
  EXPECT_LE(waits, 1);
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_SETUP);
}

TEST_F(PcmDevice, TellsItsStatusBeforeItIsConfigured) {
  m_Player.emplace();
  snd_pcm_status_t* status = nullptr;
  snd_pcm_status_alloca(&status);
  ASSERT_EQ(snd_pcm_status(Pcm(), status), 0);
  EXPECT_EQ(snd_pcm_status_get_state(status), SND_PCM_STATE_OPEN);
}

TEST_F(PcmDevice, PlaysAgainAfterADrop) {
  ASSERT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(6000)), 6000);
  ASSERT_EQ(snd_pcm_drop(Pcm()), 0);
  ASSERT_EQ(snd_pcm_prepare(Pcm()), 0);
  EXPECT_EQ(snd_pcm_avail(Pcm()), 4915);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(6000)), 6000);
}

TEST_F(PcmDevice, RunsDryWhenNothingIsWrittenAndRecovers) {
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(2457)), 2457);
  const auto start = std::chrono::steady_clock::now();
  while (snd_pcm_avail_update(Pcm()) >= 0 && Since(start) < kGenerous) {
  }
  EXPECT_EQ(snd_pcm_state(Pcm()), SND_PCM_STATE_XRUN);
  EXPECT_EQ(m_Player->Write(PcmPlayer::Silence(10)), -EPIPE);
  ASSERT_EQ(snd_pcm_recover(Pcm(), -EPIPE, 1), 0);
  EXPECT_EQ(m_Player->WriteThrough(PcmPlayer::Silence(6000)), 6000);
}

TEST_F(PcmDevice, AnEmptyStreamDoesNotRun) {
  ASSERT_EQ(snd_pcm_start(Pcm()), 0);
  EXPECT_EQ(m_Player->Write(PcmPlayer::Silence(10)), -EPIPE);
}

TEST_F(PcmDevice, ItsDescriptorTellsWhenAPeriodIsFree) {
  ASSERT_EQ(m_Player->Write(PcmPlayer::Silence(4915)), 4915);
  pollfd descriptor{};
  ASSERT_EQ(snd_pcm_poll_descriptors(Pcm(), &descriptor, 1), 1);
  ASSERT_EQ(::poll(&descriptor, 1, 10000), 1);
  unsigned short events = 0;
  ASSERT_EQ(snd_pcm_poll_descriptors_revents(Pcm(), &descriptor, 1, &events), 0);
  EXPECT_EQ(events, POLLOUT);
  EXPECT_TRUE(snd_pcm_avail(Pcm()) >= 1228 || snd_pcm_state(Pcm()) == SND_PCM_STATE_XRUN);
}

TEST_F(PcmDevice, HasOneHandleAtATime) {
  EXPECT_EQ(PcmPlayer().OpenResult(), -EBUSY);
  m_Player->Close();
  EXPECT_EQ(PcmPlayer().OpenResult(), 0);
}

TEST_F(PcmDevice, IsTheOnlyDevice) {
  snd_pcm_t* other = nullptr;
  EXPECT_EQ(snd_pcm_open(&other, "hw:0,3", SND_PCM_STREAM_PLAYBACK, 0), -ENOENT);
  EXPECT_EQ(snd_pcm_open(&other, "hw:1,8", SND_PCM_STREAM_PLAYBACK, 0), -ENOENT);
  EXPECT_EQ(snd_pcm_open(&other, "hw:0,8", SND_PCM_STREAM_CAPTURE, 0), -ENOENT);
}

}  // namespace
}  // namespace orvex::virtual_tv
