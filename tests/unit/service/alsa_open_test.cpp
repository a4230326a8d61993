// Opening the sound device: the state in which it is left, and what happens when it refuses or is open already.
#include <cerrno>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

using AlsaOpen = AlsaTest;

TEST_F(AlsaOpen, LeavesTheDeviceAtRest) {
  Open();
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

TEST_F(AlsaOpen, ThatFailsLeavesAClosedDevice) {
  world.answers.Next("snd_pcm_open", {-EBUSY});
  Open();
  EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
  Open();
  EXPECT_TRUE(opened) << "the next one succeeds";
}

TEST_F(AlsaOpen, OfAnOpenDeviceWarnsAndKeepsItAsItIs) {
  Open();
  EXPECT_THAT(Open(), ElementsAre("W0 alsa device alreay open"));
  EXPECT_TRUE(opened);
}

TEST_F(AlsaOpen, OfAnOpenDevicePlaysOnItsOldConfiguration) {
  Open();
  world.pcmLimits = {};
  Open();
  EXPECT_THAT(
      Play(Sound(128)),
      ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), DeviceIsPrepared(), ChunkIsWritten(32)})));
}

TEST_F(AlsaOpen, AfterADestroyConfiguresAfresh) {
  Open();
  audio.Destroy();
  world.pcmLimits = {};
  EXPECT_THAT(Open(), Contains("I0 buffer size:4915, period size:1228"));
  EXPECT_TRUE(opened);
}

// The configuration leaves the device prepared. When the drop fails it stays so, and a play does not prepare it again.
TEST_F(AlsaOpen, GoesOnWhenTheDropFails) {
  world.answers.Next("snd_pcm_drop", {-EIO});
  EXPECT_THAT(From(Open(), "I0 InitSwParam ok"), ElementsAre("I0 InitSwParam ok", "> snd_pcm_drop() = -5",
                                                             "> snd_pcm_frames_to_bytes(1) = 4", "I0 frame size =  4"));
  EXPECT_TRUE(opened);
  EXPECT_THAT(Play(Sound(128)),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), ChunkIsWritten(32)})));
}

TEST_F(AlsaOpen, TakesTheFrameSizeFromTheDevice) {
  world.answers.Next("snd_pcm_frames_to_bytes", {8});
  EXPECT_THAT(From(Open(), "> snd_pcm_frames_to_bytes(1) = 8"),
              ElementsAre("> snd_pcm_frames_to_bytes(1) = 8", "I0 frame size =  8"));
}

}  // namespace
