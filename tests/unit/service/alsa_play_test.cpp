// Playing: how the sound is cut into chunks and what of it reaches the device.
#include <algorithm>
#include <cerrno>
#include <set>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using testing::ElementsAre;
using testing::ElementsAreArray;

using AlsaPlay = AlsaTest;

TEST_F(AlsaPlay, OfWholeChunksWritesNoEmptyOneAtTheEnd) {
  audio.Open();
  const std::vector<std::uint8_t> sound = Sound(256);
  EXPECT_THAT(Play(sound),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 256, 128), DeviceIsPrepared(), ChunkIsWritten(32),
                                       ChunkIsCopied(128, 128, 128), ChunkIsWritten(32)})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(AlsaPlay, CutsTheRestDownToWholeFrames) {
  audio.Open();
  const std::vector<std::uint8_t> sound = Sound(128 + 11);
  EXPECT_THAT(Play(sound),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 139, 128), DeviceIsPrepared(), ChunkIsWritten(32),
                                       ChunkIsCopied(128, 11, 11), ChunkIsWritten(2)})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound, 0, 136));
}

TEST_F(AlsaPlay, DoesNotWriteARestBelowOneFrame) {
  audio.Open();
  for (const std::size_t rest : {1U, 2U, 3U}) {
    const int bytes = static_cast<int>(128 + rest);
    world.samplesTaken.clear();
    const std::vector<std::uint8_t> sound = Sound(128 + rest);
    EXPECT_THAT(From(Play(sound), "D0 playOffset = 128, leftLen = " + std::to_string(rest)),
                ElementsAreArray(Concat({ChunkIsCopied(128, bytes - 128, bytes - 128), WritingBegins(0)})));
    EXPECT_EQ(world.samplesTaken, SamplesIn(sound, 0, 128));
  }
}

TEST_F(AlsaPlay, OfOneFrameIsWritten) {
  audio.Open();
  EXPECT_THAT(Play(Sound(4)),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 4, 4), DeviceIsPrepared(), ChunkIsWritten(1)})));
}

TEST_F(AlsaPlay, OfNoBytesIsRefused) {
  audio.Open();
  const std::uint8_t nothing = 0;
  EXPECT_THAT(During(world, [&] { audio.Play(&nothing, 0); }),
              ElementsAreArray(Concat(
                  {PlayBegins(), {"D0 playOffset = 0, leftLen = 0", "E2 invalid param. buf = <address> size = 0"}})));
}

TEST_F(AlsaPlay, OnAClosedDeviceIsRefused) {
  const Texts refused = {"I0 period size[0].", "E0 framesize = 4, periodsize = 0, chunkbytes = 0",
                         "E2 Assertion failed"};
  EXPECT_THAT(Play(Sound(128)), ElementsAreArray(refused)) << "never opened";
  audio.Open();
  audio.Destroy();
  EXPECT_THAT(Play(Sound(128)), ElementsAreArray(refused)) << "closed again";
}

// A period of 2^27 frames makes a chunk of 2^32 bytes, a size that does not fit into 32 bits.
TEST_F(AlsaPlay, WithAPeriodTooLongForAChunkIsRefused) {
  world.pcmLimits = {333, 83, 16, 1UL << 27U};
  audio.Open();
  EXPECT_THAT(Play(Sound(128)),
              ElementsAre("I0 period size[134217728].", "E0 framesize = 4, periodsize = 134217728, chunkbytes = 0",
                          "E2 Assertion failed"));
}

TEST_F(AlsaPlay, WithoutMemoryForAChunkIsRefused) {
  audio.Open();
  world.answers.Next("malloc", {0});
  EXPECT_THAT(Play(Sound(128)), ElementsAreArray(Concat({PlayBegins(), {"E2 Assertion failed"}})));
  EXPECT_THAT(world.samplesTaken, ElementsAre());
}

TEST_F(AlsaPlay, AsksForMemoryOnceAndGivesItBack) {
  audio.Open();
  const std::set<void*> before = world.openBlocks;
  std::size_t atMost = 0;
  world.onCall = [&](const std::string&) { atMost = std::max(atMost, world.openBlocks.size() - before.size()); };
  world.answers.OnCall("malloc", 2, 0);
  const std::vector<std::uint8_t> sound = Sound(128 * 5);
  Play(sound);
  world.onCall = nullptr;
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
  EXPECT_EQ(atMost, 1U);
  EXPECT_EQ(world.openBlocks, before);
}

TEST_F(AlsaPlay, GoesOnBehindWhatAShortWriteHasTaken) {
  audio.Open();
  world.answers.Next("snd_pcm_writei", {10, 0, 21});
  const std::vector<std::uint8_t> sound = Sound(160);
  EXPECT_THAT(Play(sound), ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 160, 128), DeviceIsPrepared(),
                                                    WritingBegins(32), WriteOf(32, 10), WriteOf(22, 0), WriteOf(22, 21),
                                                    WriteOf(1, 1), ChunkIsCopied(128, 32, 32), ChunkIsWritten(8)})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

// A frame size of 0 makes every chunk one of 0 frames.
TEST_F(AlsaPlay, WritesNoFramesToADeviceWithoutAFrameSize) {
  world.answers.Next("snd_pcm_frames_to_bytes", {0});
  audio.Open();
  EXPECT_TRUE(world.journal.Has("I0 frame size =  0"));
  EXPECT_THAT(Play(Sound(130)),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 130, 128), DeviceIsPrepared(), ChunkIsWritten(0),
                                       ChunkIsCopied(128, 2, 2), ChunkIsWritten(0)})));
  EXPECT_THAT(world.samplesTaken, ElementsAre());
}

TEST_F(AlsaPlay, WritesNothingToADeviceThatCannotTellItsFrameSize) {
  world.answers.Next("snd_pcm_frames_to_bytes", {-EIO});
  audio.Open();
  EXPECT_TRUE(world.journal.Has("I0 frame size =  -5"));
  EXPECT_THAT(
      Play(Sound(128)),
      ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), DeviceIsPrepared(), WritingBegins(0)})));
}

// 96 bytes are less than one frame of 100.
TEST_F(AlsaPlay, CountsFramesInTheDevicesFrameSize) {
  world.answers.Next("snd_pcm_frames_to_bytes", {100});
  audio.Open();
  EXPECT_THAT(Play(Sound(128 + 96)),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 224, 128), DeviceIsPrepared(), ChunkIsWritten(1),
                                       ChunkIsCopied(128, 96, 96), WritingBegins(0)})));
}

TEST_F(AlsaPlay, PreparesADeviceAtRestOnlyOnce) {
  audio.Open();
  Play(Sound(128));
  EXPECT_THAT(Play(Sound(128)),
              ElementsAreArray(Concat({PlayBegins(), ChunkIsCopied(0, 128, 128), ChunkIsWritten(32)})));
}

}  // namespace
