// The sound device, sound for it, and the lines of a play.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Common/AlsaAudio.h"
#include "support/journal.h"

namespace orvex::test {

// A device with periods of 4 frames, which makes chunks of 128 bytes or 32 frames. It starts with 8 frames.
inline world::PcmDevice::Limits SmallDevice() {
  return {333, 83, 16, 4};
}

// Bytes of sound, no two neighbouring frames alike.
inline std::vector<std::uint8_t> Sound(std::size_t bytes) {
  std::vector<std::uint8_t> sound;
  for (std::size_t i = 0; i < bytes; ++i) {
    sound.push_back(static_cast<std::uint8_t>(1 + i % 251));
  }
  return sound;
}

// The samples that lie in `bytes` from `from` up to `to`.
inline std::vector<std::int16_t> SamplesIn(const std::vector<std::uint8_t>& bytes, std::size_t from, std::size_t to) {
  std::vector<std::int16_t> samples((to - from) / sizeof(std::int16_t));
  std::memcpy(samples.data(), bytes.data() + from, samples.size() * sizeof(std::int16_t));
  return samples;
}

inline std::vector<std::int16_t> SamplesIn(const std::vector<std::uint8_t>& bytes) {
  return SamplesIn(bytes, 0, bytes.size());
}

// Lines of a play on the small device.
inline Texts PlayBegins() {
  return {"I0 period size[4].", "E0 framesize = 4, periodsize = 4, chunkbytes = 128"};
}

inline Texts ChunkIsCopied(int offset, int left, int bytes) {
  return {"D0 playOffset = " + std::to_string(offset) + ", leftLen = " + std::to_string(left),
          "D0 playSize = " + std::to_string(bytes)};
}

inline Texts DeviceIsPrepared() {
  return {"> snd_pcm_prepare() = 0"};
}

inline Texts WriteOf(int frames, int result) {
  return {"> snd_pcm_writei(" + std::to_string(frames) + ") = " + std::to_string(result),
          "I0 write return : " + std::to_string(result) + "."};
}

inline Texts WritingBegins(int frames) {
  return {"I0 pcm start writing, buf <address>, frames to write" + std::to_string(frames) + "."};
}

inline Texts ChunkIsWritten(int frames) {
  return Concat({WritingBegins(frames), WriteOf(frames, frames)});
}

inline Texts DeviceIsClosed() {
  return {"I0 Destroy", "> snd_pcm_drop() = 0", "I0 Done drop", "> snd_pcm_close() = 0", "I0 Done close"};
}

inline Texts DeviceIsDropped() {
  return {"E2 write error: drop...", "> snd_pcm_drop() = 0"};
}

inline Texts ClosedDeviceIsLeft() {
  return {"I0 Destroy", "W0 alsa device not open"};
}

// A device that is small unless a test says otherwise, and what the journal shows of each use of it.
class AlsaTest : public testing::Test {
protected:
  AlsaTest() { world.pcmLimits = SmallDevice(); }

  Texts Open() {
    return During(world, [this] { opened = audio.Open(); });
  }
  Texts Play(const std::vector<std::uint8_t>& sound) {
    return During(world, [&] { audio.Play(sound.data(), static_cast<std::uint32_t>(sound.size())); });
  }
  Texts Destroy() {
    return During(world, [this] { audio.Destroy(); });
  }

  world::World world;
  AlsaAudio audio;
  bool opened = false;  // the answer of Open()
};

// Plays two chunks of 32 frames on an open device. Tests have the first one fail and expect the lines of the second.
class TwoChunks : public AlsaTest {
protected:
  TwoChunks() { audio.Open(); }

  Texts Play() { return AlsaTest::Play(sound); }
  static Texts FirstChunk(const Texts& lines) {
    return Concat({PlayBegins(), ChunkIsCopied(0, 256, 128), DeviceIsPrepared(), WritingBegins(32), lines});
  }
  static Texts SecondChunk() { return Concat({ChunkIsCopied(128, 128, 128), ChunkIsWritten(32)}); }
  static Texts SecondChunkAfterPrepare() {
    return Concat({ChunkIsCopied(128, 128, 128), DeviceIsPrepared(), ChunkIsWritten(32)});
  }

  const std::vector<std::uint8_t> sound = Sound(256);
};

}  // namespace orvex::test
