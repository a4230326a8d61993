// The playback device through which the test sound leaves the television.
#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>

// Owns one ALSA handle on "hw:0,8": 48000 Hz, 2 channels, signed 16-bit little-endian, interleaved. No operation but
// Open() reports failure to its caller; what fails is logged, and a block that cannot be written is skipped.
//
// Threads: Open() and Destroy() on the main loop, Play() on the player's worker, never at the same time.
class AlsaAudio {
public:
  AlsaAudio() = default;
  ~AlsaAudio();
  AlsaAudio(const AlsaAudio&) = delete;
  AlsaAudio& operator=(const AlsaAudio&) = delete;

  // Opens and configures the device, or goes on with the one that is open. It then rests until the first write. False:
  // the device could not be opened. A configuration that fails is logged and leaves the device open.
  bool Open();
  // Writes `length` bytes of interleaved samples; returns when the device has taken the last one that it will take.
  // Half a frame at the end is not written.
  void Play(const std::uint8_t* data, std::uint32_t length);
  // Stops and closes the device; what it has not yet played is dropped. Harmless on a closed device.
  void Destroy();

private:
  void m_InitHwParam();
  void m_InitSwParam();
  void m_Play(const std::uint8_t* chunk, std::uint32_t bytes);
  long m_WriteFrames(const std::uint8_t* position, std::uint32_t frames);
  void m_HandleWriteError(long error);
  bool m_Recover(long error);

  snd_pcm_t* m_pcmHandle = nullptr;
  std::uint32_t m_bufferSize = 0;  // frames
  std::uint32_t m_periodSize = 0;  // frames
  std::uint32_t m_frameBytes = 0;  // bytes per frame
  std::uint32_t m_chunkSize = 0;   // frames
};
