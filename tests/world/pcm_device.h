// A playback device in virtual time: takes frames at 48000 Hz, as a blocking interleaved ALSA device does.
#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "scheduler.h"

namespace orvex::world {

class PcmDevice {
public:
  // What the device makes of requested parameters, and reports.
  struct Limits {
    unsigned int bufferTimeUs = 102396;
    unsigned int periodTimeUs = 25583;
    snd_pcm_uframes_t bufferFrames = 4915;
    snd_pcm_uframes_t periodFrames = 1228;
  };
  // Frames that leave the device from `start` on.
  using Sink = std::function<void(Time start, const std::int16_t* stereo, std::size_t frames)>;
  using Cut = std::function<void(Time from)>;

  PcmDevice(Scheduler& scheduler, const Limits& limits, Sink sink, Cut cut);

  snd_pcm_state_t State();
  void Prepare();
  void Drop();
  // Takes frames, waiting in virtual time until the last one fits; a negative ALSA error when it cannot.
  snd_pcm_sframes_t Write(const void* frames, snd_pcm_uframes_t count);
  void SetState(snd_pcm_state_t state) { m_State = state; }

  snd_pcm_uframes_t startThreshold = 1;
  snd_pcm_uframes_t stopThreshold = 0;
  snd_pcm_uframes_t availMin = 0;

private:
  std::uint64_t Played() const;
  void Start();

  Scheduler& m_Scheduler;
  Limits m_Limits;
  Sink m_Sink;
  Cut m_Cut;
  snd_pcm_state_t m_State = SND_PCM_STATE_OPEN;
  std::uint64_t m_Written = 0;          // frames since prepare
  Time m_StartedAt{0};                  // while running
  std::vector<std::int16_t> m_Waiting;  // frames written before the device runs
};

}  // namespace orvex::world
