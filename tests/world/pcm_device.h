// A playback device in virtual time: takes frames at 48000 Hz, as a blocking interleaved ALSA device does.
#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "world/scheduler.h"

namespace orvex::world {

// Every operation answers as ALSA's does in the state of that moment: -EIO before the parameters are installed, -ENODEV
// when the device is gone.
class PcmDevice {
public:
  // What the device makes of requested parameters, and reports. One that reports a buffer of 0 frames has 8192.
  struct Limits {
    unsigned int bufferTimeUs = 102396;
    unsigned int periodTimeUs = 25583;
    snd_pcm_uframes_t bufferFrames = 4915;
    snd_pcm_uframes_t periodFrames = 1228;
  };
  struct Thresholds {  // frames
    snd_pcm_uframes_t availMin = 0;
    snd_pcm_uframes_t start = 0;
    snd_pcm_uframes_t stop = 0;
  };
  // Frames that leave the device from `start` on.
  using Sink = std::function<void(Time start, const std::int16_t* stereo, std::size_t frames)>;
  // Frames that would have left from `from` on do not.
  using Cut = std::function<void(Time from)>;

  PcmDevice(Scheduler& scheduler, const Limits& limits, Sink sink, Cut cut);
  ~PcmDevice();
  PcmDevice(const PcmDevice&) = delete;
  PcmDevice& operator=(const PcmDevice&) = delete;

  snd_pcm_state_t State();
  // Installs the parameters, with ALSA's own thresholds, and prepares.
  void Configure();
  bool IsConfigured() const { return m_State != SND_PCM_STATE_OPEN; }
  const Thresholds& GetThresholds() const { return m_Thresholds; }
  void SetThresholds(const Thresholds& thresholds) { m_Thresholds = thresholds; }
  int Prepare();
  int Drop();
  // Goes on where Fail(SND_PCM_STATE_SUSPENDED) has stopped the device.
  int Resume();
  // Takes frames, waiting in virtual time until the last one fits. A device that stops meanwhile answers how many it
  // took before, or the error when it took none.
  snd_pcm_sframes_t Write(const void* frames, snd_pcm_uframes_t count);
  // Waits for room after a write that found none: for the time of availMin frames while the device runs (1), else in
  // vain (0).
  int Wait(int timeoutMs);
  // The device stops by itself: SND_PCM_STATE_XRUN, _SUSPENDED or _DISCONNECTED.
  void Fail(snd_pcm_state_t state);

private:
  int Error();
  std::uint64_t Played() const;
  std::uint64_t Room() const;
  void Take(const std::int16_t* stereo, std::size_t frames);

  Scheduler& m_Scheduler;
  snd_pcm_uframes_t m_BufferFrames;
  snd_pcm_uframes_t m_PeriodFrames;
  Thresholds m_Thresholds;
  Sink m_Sink;
  Cut m_Cut;
  snd_pcm_state_t m_State = SND_PCM_STATE_OPEN;
  snd_pcm_state_t m_SuspendedState = SND_PCM_STATE_OPEN;  // in which it was suspended
  std::uint64_t m_Written = 0;                            // frames since prepare
  Time m_StartedAt{0};                                    // while running; moved on by the time spent suspended
  Time m_StoppedAt{0};                                    // by Fail()
  std::vector<std::int16_t> m_Buffer;                     // the last frames written, as many as the buffer holds
};

}  // namespace orvex::world
