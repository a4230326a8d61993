// The virtual television's sound device as libasound drives it: playback at 48000 Hz, 2 channels, signed 16-bit, paced
// by CLOCK_MONOTONIC.
#pragma once

#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>

#include <atomic>
#include <deque>
#include <optional>
#include <utility>

#include "virtual/pcm_stream.h"

namespace orvex::virtual_tv {

// Whether the one handle is open, and what outlives it.
struct PcmSlot {
  explicit PcmSlot(std::deque<PcmFaultPoint> listed) : faults(std::move(listed)) {}

  std::atomic<bool> isTaken{false};
  std::deque<PcmFaultPoint> faults;  // that have not happened yet; only the open handle uses them
};

// One open handle. libasound's lock of the handle guards it, except in Prepare(): a program that prepares does nothing
// else with the handle meanwhile.
//
// The poll descriptor is a timer that stands at the moment at which waiting ends. It stays readable until it is set
// anew, so a waiter never misses it, and no thread of our own is needed.
class VirtualPcm {
public:
  // `sink` and `slot` must outlive this object; the slot is this handle's until it is destroyed.
  VirtualPcm(SoundSink& sink, PcmSlot& slot) : m_Slot(slot), m_Stream(sink, slot.faults) {}
  ~VirtualPcm();
  VirtualPcm(const VirtualPcm&) = delete;
  VirtualPcm& operator=(const VirtualPcm&) = delete;

  // 0: made, and libasound owns this object: it goes when the handle is closed. Negative: not made.
  int Create(const char* name, snd_pcm_stream_t direction, int mode);
  // What a program may ask for. 0 or negative.
  int SetConstraints();
  snd_pcm_t* GetPcm() const { return m_Io.pcm; }

  // libasound's callbacks.
  int TakeSwParams(snd_pcm_sw_params_t* params);
  void Start();
  void Stop();
  void Prepare();
  void Resume();
  snd_pcm_sframes_t Pointer();
  snd_pcm_sframes_t Transfer(const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset, snd_pcm_uframes_t count);

private:
  snd_pcm_sframes_t ApplyFault(PcmFault fault);
  bool HasRunDry(MonotonicTime now) const;
  snd_pcm_sframes_t PositionInBuffer(MonotonicTime now) const;
  std::optional<MonotonicTime> EndOfWait(MonotonicTime now) const;
  void SetTimer();

  PcmSlot& m_Slot;
  snd_pcm_ioplug_t m_Io{};
  PcmStream m_Stream;
  int m_Timer = -1;
  bool m_IsStalled = false;  // by a fault, until the stream is stopped or prepared
  snd_pcm_uframes_t m_AvailMin = 1;
};

}  // namespace orvex::virtual_tv
