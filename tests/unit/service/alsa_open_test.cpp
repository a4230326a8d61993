// Opening the sound device: what is asked of it, and what an open device means for the next play.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "Common/AlsaAudio.h"
#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using orvex::world::World;
using testing::ElementsAre;
using testing::ElementsAreArray;

const Texts kOpening = {"> snd_pcm_open(\"hw:0,8\", playback, 0) = 0",
                        "I0 snd_pcm_open hw:0,8 successed handle <address>",
                        "> snd_pcm_hw_params_any() = 0",
                        "> snd_pcm_hw_params_set_access(3) = 0",
                        "> snd_pcm_hw_params_set_format(2) = 0",
                        "> snd_pcm_hw_params_set_channels(2) = 0",
                        "> snd_pcm_hw_params_set_rate(48000, 0) = 0",
                        "> snd_pcm_hw_params_set_buffer_time_near(102400, null) = 0",
                        "> snd_pcm_hw_params_set_period_time_near(25600, null) = 0",
                        "> snd_pcm_hw_params_get_buffer_size() = 0",
                        "> snd_pcm_hw_params_get_period_size() = 0",
                        "I0 buffer time:102396, period time:25583",
                        "I0 buffer size:4915, period size:1228",
                        "> snd_pcm_hw_params() = 0",
                        "I0 InitHwParam ok",
                        "> snd_pcm_sw_params_current() = 0",
                        "> snd_pcm_sw_params_set_avail_min(1228) = 0",
                        "> snd_pcm_sw_params_set_start_threshold(2457) = 0",
                        "> snd_pcm_sw_params_set_stop_threshold(4915) = 0",
                        "> snd_pcm_sw_params() = 0",
                        "I0 InitSwParam ok",
                        "> snd_pcm_drop() = 0",
                        "> snd_pcm_frames_to_bytes(1) = 4",
                        "I0 frame size =  4"};

class AlsaOpen : public testing::Test {
protected:
  Texts Open() {
    return During(world, [this] { opened = audio.Open(); });
  }
  Texts Play(std::uint32_t bytes) {
    const std::vector<std::uint8_t> sound = Sound(bytes);
    return During(world, [&] { audio.Play(sound.data(), bytes); });
  }

  World world;
  AlsaAudio audio;
  bool opened = false;
};

TEST_F(AlsaOpen, ConfiguresTheTelevisionsDeviceAndLeavesItAtRest) {
  EXPECT_THAT(Open(), ElementsAreArray(kOpening));
  EXPECT_TRUE(opened);
  EXPECT_EQ(world.pcm->State(), SND_PCM_STATE_SETUP);
}

TEST_F(AlsaOpen, NamesTheHandleThatTheDeviceGave) {
  Open();
  char handle[32];
  std::snprintf(handle, sizeof handle, "%p", static_cast<void*>(world.pcm.get()));
  EXPECT_TRUE(world.journal.Has(std::string("I0 snd_pcm_open hw:0,8 successed handle ") + handle));
}

TEST_F(AlsaOpen, ThatFailsAsksNothingMoreOfTheDevice) {
  for (const long error : {-ENOENT, -EBUSY, -ENODEV, -1}) {
    world.answers.Next("snd_pcm_open", {error});
    EXPECT_THAT(Open(), ElementsAre("> snd_pcm_open(\"hw:0,8\", playback, 0) = " + std::to_string(error),
                                    "E2 Assertion failed"));
    EXPECT_FALSE(opened);
  }
}

TEST_F(AlsaOpen, SucceedsAfterOneThatFailed) {
  world.answers.Next("snd_pcm_open", {-EBUSY});
  Open();
  EXPECT_THAT(Open(), ElementsAreArray(kOpening));
  EXPECT_TRUE(opened);
}

TEST_F(AlsaOpen, ThatFailsLeavesAClosedDevice) {
  world.answers.Next("snd_pcm_open", {-EBUSY});
  Open();
  EXPECT_THAT(During(world, [this] { audio.Destroy(); }), ElementsAreArray(ClosedDeviceIsLeft()));
}

TEST_F(AlsaOpen, OfAnOpenDeviceWarnsAndKeepsItAsItIs) {
  Open();
  EXPECT_THAT(Open(), ElementsAre("W0 alsa device alreay open"));
  EXPECT_TRUE(opened);
}

TEST_F(AlsaOpen, OfAnOpenDevicePlaysOnItsOldConfiguration) {
  world.pcmLimits = SmallDevice();
  Open();
  world.pcmLimits = {};
  Open();
  EXPECT_THAT(
      Play(128),
      ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), DeviceIsPrepared(), ChunkIsWritten(32)})));
}

TEST_F(AlsaOpen, AfterADestroyConfiguresAfresh) {
  world.pcmLimits = SmallDevice();
  Open();
  audio.Destroy();
  world.pcmLimits = {};
  EXPECT_THAT(Open(), ElementsAreArray(kOpening));
  EXPECT_TRUE(opened);
}

// The configuration leaves the device prepared: one that did not drop is written to as it stands.
TEST_F(AlsaOpen, GoesOnWhenTheDropFails) {
  world.pcmLimits = SmallDevice();
  world.answers.Next("snd_pcm_drop", {-EIO});
  EXPECT_THAT(From(Open(), "I0 InitSwParam ok"), ElementsAre("I0 InitSwParam ok", "> snd_pcm_drop() = -5",
                                                             "> snd_pcm_frames_to_bytes(1) = 4", "I0 frame size =  4"));
  EXPECT_TRUE(opened);
  EXPECT_THAT(Play(128), ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), ChunkIsWritten(32)})));
}

TEST_F(AlsaOpen, TakesTheFrameSizeFromTheDevice) {
  world.answers.Next("snd_pcm_frames_to_bytes", {8});
  EXPECT_THAT(From(Open(), "> snd_pcm_frames_to_bytes(1) = 8"),
              ElementsAre("> snd_pcm_frames_to_bytes(1) = 8", "I0 frame size =  8"));
}

}  // namespace
