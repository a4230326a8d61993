// The room in which the virtual television stands: takes what the sound device plays and gives what the remote
// control's microphone hears. A process has one. Time is CLOCK_MONOTONIC.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "virtual/monotonic_time.h"
#include "virtual/pcm_stream.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {

// Every operation may be called from any thread. None calls back.
class LivingRoom final : public SoundSink {
public:
  using Block = sim::VoiceChannel::Block;

  // Reads the television's room and the noise that it names. When they cannot be used, that is one line on stderr and
  // the room is absent: it takes sound and gives none.
  explicit LivingRoom(const Television& television);

  // The room of this process's television, made on first use. The destructor of a static object may close the device.
  static LivingRoom& Instance();

  bool IsPresent() const { return m_Room != nullptr; }

  // SoundSink. Frames are heard with the speaker's mute and the S/PDIF delay that the television shows at the call.
  void Play(MonotonicTime start, const std::int16_t* frames, std::size_t count) override;
  void Cut(MonotonicTime from) override;

  // The remote's voice channel, as sim::VoiceChannel. Without a room nothing is ever due.
  void StartVoice(MonotonicTime now);
  void ExtendVoice(MonotonicTime now);
  void StopVoice();
  std::optional<MonotonicTime> NextDelivery() const;
  bool TakeBlock(Block& block);

private:
  void Build();
  void LoadNoise(const std::string& file);
  // What the television shows of its outputs. A value that cannot be read is empty and leaves the last one in force.
  struct Outputs {
    std::optional<bool> isTvMuted;
    std::optional<double> spdifDelayMs;
    std::string problem;  // empty: both were read
  };
  Outputs ReadOutputs() const;
  void ApplyOutputs(const Outputs& outputs);

  const Television& m_Television;
  mutable std::mutex m_Mutex;  // guards what the pointers lead to and what stands below; the pointers never change
  std::unique_ptr<sim::Room> m_Room;
  std::unique_ptr<sim::VoiceChannel> m_Voice;
  bool m_IsProblemReported = false;  // that of the outputs, since both could last be read
};

}  // namespace orvex::virtual_tv
