// Closing the sound device: one that is not open, one whose drop or close fails, and by the destructor.
#include <cerrno>
#include <memory>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAreArray;

using AlsaDestroy = AlsaTest;

TEST_F(AlsaDestroy, OfADeviceThatWasNeverOpenOnlyWarns) {
  EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
}

TEST_F(AlsaDestroy, TwiceClosesOnce) {
  audio.Open();
  Destroy();
  EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
}

TEST_F(AlsaDestroy, ComesWithTheObjectsEndWhetherTheDeviceIsOpenOrNot) {
  auto open = std::make_unique<AlsaAudio>();
  open->Open();
  EXPECT_THAT(During(world, [&] { open.reset(); }), ElementsAreArray(DeviceIsClosed()));
  auto closed = std::make_unique<AlsaAudio>();
  EXPECT_THAT(During(world, [&] { closed.reset(); }), ElementsAreArray(ClosedDeviceIsLeft()));
}

// What the device answers to drop and close, and the lines that Destroy() leaves then.
struct Failure {
  long drop;
  long close;
  Texts lines;
};

TEST_F(AlsaDestroy, ClosesWhateverDropAndCloseAnswer) {
  const std::vector<Failure> cases = {
      {-EBADFD,
       0,
       {"I0 Destroy", "> snd_pcm_drop() = -77", "E2 snd_pcm_drop failed", "I0 Done drop", "> snd_pcm_close() = 0",
        "I0 Done close"}},
      {0,
       -EIO,
       {"I0 Destroy", "> snd_pcm_drop() = 0", "I0 Done drop", "> snd_pcm_close() = -5", "E2 snd_pcm_close failed",
        "I0 Done close"}},
      {-EIO,
       -EIO,
       {"I0 Destroy", "> snd_pcm_drop() = -5", "E2 snd_pcm_drop failed", "I0 Done drop", "> snd_pcm_close() = -5",
        "E2 snd_pcm_close failed", "I0 Done close"}},
      {1, 1, {"I0 Destroy", "> snd_pcm_drop() = 1", "I0 Done drop", "> snd_pcm_close() = 1", "I0 Done close"}}};
  for (const Failure& failure : cases) {
    audio.Open();
    world.answers.Next("snd_pcm_drop", {failure.drop});
    world.answers.Next("snd_pcm_close", {failure.close});
    EXPECT_THAT(Destroy(), ElementsAreArray(failure.lines));
    EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
  }
}

TEST_F(AlsaDestroy, ForgetsTheChunkSizeUntilTheNextOpen) {
  audio.Open();
  EXPECT_THAT(Play(Sound(4)), Contains("I0 period size[4]."));
  audio.Destroy();
  EXPECT_THAT(Play(Sound(4)), Contains("I0 period size[0]."));
  audio.Open();
  EXPECT_THAT(Play(Sound(4)), Contains("I0 period size[4]."));
}

}  // namespace
