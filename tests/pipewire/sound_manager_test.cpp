// Mute and volume of an output that belongs to a card, and the balance of an output's channels.
#include "orvex/platform/sound_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pipewire/card.h"
#include "pipewire/client/pc_config.h"
#include "pipewire/client/volume_scale.h"
#include "pipewire/private_daemon.h"
#include "pipewire/test_client.h"

namespace orvex::integration {
namespace {

using testing::ElementsAre;
using testing::FloatNear;

constexpr int kTvSpeaker = 0;

class SoundOfACard : public testing::Test {
protected:
  SoundOfACard() {
    pipewire::WritePcConfig(m_Daemon.GetConfigFolder() / "pc.json", {Card::kOutput, "soundbar", "microphone"});
  }

  PrivateDaemon m_Daemon;
  TestClient m_Client;
  Card m_Card{m_Client};
};

TEST_F(SoundOfACard, IsThatOfItsRoute) {
  EXPECT_EQ(sound_manager_set_tv_master_volume(37), kSoundDone);
  EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, true), kSoundDone);
  const float amplitude = pipewire::AmplitudeOf(37);
  EXPECT_EQ(m_Card.GetSound().isMuted, true);
  EXPECT_THAT(m_Card.GetSound().channelVolumes, ElementsAre(amplitude, amplitude));
  std::int32_t volume = -1;
  bool isMuted = false;
  EXPECT_EQ(sound_manager_get_tv_master_volume(&volume), kSoundDone);
  EXPECT_EQ(sound_manager_get_device_mute(kTvSpeaker, &isMuted), kSoundDone);
  EXPECT_EQ(volume, 37);
  EXPECT_TRUE(isMuted);
}

TEST_F(SoundOfACard, KeepsItsBalanceOverSilence) {
  m_Card.SetSound({false, {0.5F, 0.25F}});
  std::int32_t volume = -1;
  EXPECT_EQ(sound_manager_get_tv_master_volume(&volume), kSoundDone);
  EXPECT_EQ(sound_manager_set_tv_master_volume(0), kSoundDone);
  EXPECT_THAT(m_Card.GetSound().channelVolumes, ElementsAre(0.0F, 0.0F));
  EXPECT_EQ(sound_manager_set_tv_master_volume(volume), kSoundDone);
  EXPECT_THAT(m_Card.GetSound().channelVolumes, ElementsAre(FloatNear(0.5F, 0.01F), FloatNear(0.25F, 0.005F)));
}

}  // namespace
}  // namespace orvex::integration
