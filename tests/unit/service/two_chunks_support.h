// A play of two chunks, for tests of what befalls the first and what that means for the second.
#pragma once

#include <gtest/gtest.h>

#include "Common/AlsaAudio.h"
#include "unit/service/sound_support.h"

namespace orvex::test {

// Two chunks of 32 frames on the small device; what the first meets, and what becomes of the second.
class TwoChunks : public testing::Test {
protected:
  TwoChunks() {
    world.pcmLimits = SmallDevice();
    audio.Open();
  }

  Texts Play() {
    return During(world, [this] { audio.Play(sound.data(), 256); });
  }
  static Texts FirstChunk(const Texts& lines) {
    return Concat({PlayBegins(), ChunkIsCopied(0, 256, 128), DeviceIsPrepared(), WritingBegins(32), lines});
  }
  static Texts SecondChunk() { return Concat({ChunkIsCopied(128, 128, 128), ChunkIsWritten(32)}); }
  static Texts SecondChunkAfterPrepare() {
    return Concat({ChunkIsCopied(128, 128, 128), DeviceIsPrepared(), ChunkIsWritten(32)});
  }

  world::World world;
  AlsaAudio audio;
  const std::vector<std::uint8_t> sound = Sound(256);
};

inline Texts DeviceIsDropped() {
  return {"E2 write error: drop...", "> snd_pcm_drop() = 0"};
}

}  // namespace orvex::test
