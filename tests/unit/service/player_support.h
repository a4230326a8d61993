// A sound player on the small device, and WAV files for it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Application/OrvexSoundPlayer.h"
#include "unit/service/sound_support.h"

namespace orvex::world {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

inline Bytes LittleEndian(std::uint32_t value, int bytes) {
  Bytes result;
  for (int i = 0; i < bytes; ++i) {
    result.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  return result;
}

inline Bytes ChunkHeader(const std::string& identifier, std::uint32_t size) {
  return Joined({Bytes(identifier.begin(), identifier.end()), LittleEndian(size, 4)});
}

// "RIFF", size, "WAVE" and a format chunk that says `formatSize`: the plain 16 bytes and what `extension` adds.
inline Bytes WaveBeginning(std::uint32_t formatSize = 16, const Bytes& extension = {}) {
  const Bytes wave = {'W', 'A', 'V', 'E'};
  const Bytes format = Joined({LittleEndian(1, 2), LittleEndian(2, 2), LittleEndian(48000, 4), LittleEndian(192000, 4),
                               LittleEndian(4, 2), LittleEndian(16, 2)});
  return Joined({ChunkHeader("RIFF", 0), wave, ChunkHeader("fmt ", formatSize), format, extension});
}

inline Bytes WaveOf(const Bytes& sound) {
  return Joined({WaveBeginning(), ChunkHeader("data", static_cast<std::uint32_t>(sound.size())), sound});
}

// A file of its own for as long as it lives.
class TemporaryFile {
public:
  explicit TemporaryFile(const Bytes& content) {
    const int descriptor = mkstemp(m_Path.data());
    EXPECT_GE(descriptor, 0) << m_Path;
    close(descriptor);
    Write(content);
  }
  ~TemporaryFile() { Remove(); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Write(const Bytes& content) const {
    std::ofstream file(m_Path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(file.good()) << m_Path;
  }
  void Remove() const { unlink(m_Path.c_str()); }
  const std::string& Path() const { return m_Path; }

private:
  std::string m_Path = testing::TempDir() + "orvex_sound_XXXXXX";
};

// The player, its file with 64 frames of sound, and an owner who notes in the journal that it was called.
class PlayerFixture : public testing::Test {
protected:
  PlayerFixture() {
    world.pcmLimits = SmallDevice();
    world.soundFile = file.Path();
    player = std::make_unique<OrvexSoundPlayer>();
    player->Prepare("/res/sound/test.wav", OnEnd, OnCancel, this);
    m_BlocksBefore = world.openBlocks.size();
  }

  static void OnEnd(void* userData) { static_cast<PlayerFixture*>(userData)->world.Call("end callback"); }
  static void OnCancel(void* userData) { static_cast<PlayerFixture*>(userData)->world.Call("cancel callback"); }

  bool SamplesAreHeld() const { return world.openBlocks.size() > m_BlocksBefore; }
  Texts PlayWave() {
    return LinesOf(world, [this] { started = player->PlayWave(); });
  }
  Texts StopWave() {
    return LinesOf(world, [this] { player->StopWave(); });
  }
  // All that happens until nothing is left to do.
  Texts Rest() {
    return LinesOf(world, [this] { world.AdvanceMs(10000); });
  }

  World world;
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

}  // namespace orvex::world
