// A sound player on the small device, and the lines of its play.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "Application/OrvexSoundPlayer.h"
#include "support/wave_file.h"
#include "unit/service/sound_support.h"

namespace orvex::test {

// The player, its file with 64 frames of sound, and an owner who notes in the journal that it was called.
class PlayerTest : public testing::Test {
protected:
  PlayerTest() {
    world.pcmLimits = SmallDevice();
    world.soundFile = file.Path();
    player = std::make_unique<OrvexSoundPlayer>();
    player->Prepare("/res/sound/test.wav", OnEnd, OnCancel, this);
    m_BlocksBefore = world.openBlocks.size();
  }

  static void OnEnd(void* userData) { static_cast<PlayerTest*>(userData)->world.Call("end callback"); }
  static void OnCancel(void* userData) { static_cast<PlayerTest*>(userData)->world.Call("cancel callback"); }

  bool SamplesAreHeld() const { return world.openBlocks.size() > m_BlocksBefore; }
  Texts PlayWave() {
    return During(world, [this] { started = player->PlayWave(); });
  }
  Texts StopWave() {
    return During(world, [this] { player->StopWave(); });
  }
  // All that happens until nothing is left to do.
  Texts Rest() {
    return During(world, [this] { world.AdvanceMs(10000); });
  }

  world::World world;
  Bytes sound = Sound(256);
  TemporaryFile file{WaveOf(Sound(256))};
  std::unique_ptr<OrvexSoundPlayer> player;
  bool started = false;

private:
  std::size_t m_BlocksBefore = 0;
};

inline Texts LoadingBegins() {
  return {"I0 m_StartPlay", "I0 ", "> file_location(\"/res/sound/test.wav\")"};
}

// Lines of writing the fixture's sound.
inline Texts SoundIsWritten() {
  return Concat({PlayBegins(), ChunkIsCopied(0, 256, 128), DeviceIsPrepared(), ChunkIsWritten(32),
                 ChunkIsCopied(128, 128, 128), ChunkIsWritten(32)});
}

inline Texts PlayEnds() {
  return Concat({{"I0 m_EndPlayerCB", "> end callback"}, DeviceIsClosed()});
}

}  // namespace orvex::test
