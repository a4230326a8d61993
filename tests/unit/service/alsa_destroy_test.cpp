// Closing the sound device: once, twice, and one that resists.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

#include "Common/AlsaAudio.h"
#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using orvex::world::World;
using testing::Contains;
using testing::ElementsAreArray;

class AlsaDestroy : public testing::Test {
protected:
  AlsaDestroy() {
    world.pcmLimits = SmallDevice();
    audio.emplace();
  }

  Texts Destroy() {
    return During(world, [this] { audio->Destroy(); });
  }

  World world;
  std::optional<AlsaAudio> audio;
};

TEST_F(AlsaDestroy, StopsAndClosesAnOpenDevice) {
  audio->Open();
  EXPECT_THAT(Destroy(), ElementsAreArray(DeviceIsClosed()));
}

TEST_F(AlsaDestroy, OfADeviceThatWasNeverOpenOnlyWarns) {
  EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
}

TEST_F(AlsaDestroy, TwiceClosesOnce) {
  audio->Open();
  Destroy();
  EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
}

TEST_F(AlsaDestroy, ComesWithTheObjectsEnd) {
  audio->Open();
  EXPECT_THAT(During(world, [this] { audio.reset(); }), ElementsAreArray(DeviceIsClosed()));
}

TEST_F(AlsaDestroy, ComesWithTheObjectsEndAlsoWhenTheDeviceIsClosed) {
  EXPECT_THAT(During(world, [this] { audio.reset(); }), ElementsAreArray(ClosedDeviceIsLeft()));
}

// What the device answers to drop and close, and the lines of that.
struct Resistance {
  long drop;
  long close;
  Texts lines;
};

TEST_F(AlsaDestroy, GoesOnWithADeviceThatResists) {
  const std::vector<Resistance> cases = {
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
  for (const Resistance& resistance : cases) {
    audio->Open();
    world.answers.Next("snd_pcm_drop", {resistance.drop});
    world.answers.Next("snd_pcm_close", {resistance.close});
    EXPECT_THAT(Destroy(), ElementsAreArray(resistance.lines));
    EXPECT_THAT(Destroy(), ElementsAreArray(ClosedDeviceIsLeft()));
  }
}

TEST_F(AlsaDestroy, ForgetsTheChunkSizeUntilTheNextOpen) {
  const std::vector<std::uint8_t> sound = Sound(4);
  const auto play = [&] { return During(world, [&] { audio->Play(sound.data(), 4); }); };
  audio->Open();
  EXPECT_THAT(play(), Contains("I0 period size[4]."));
  audio->Destroy();
  EXPECT_THAT(play(), Contains("I0 period size[0]."));
  audio->Open();
  EXPECT_THAT(play(), Contains("I0 period size[4]."));
}

}  // namespace
