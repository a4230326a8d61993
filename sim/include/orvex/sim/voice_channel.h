// The remote control's voice channel as a schedule: when which block of microphone samples is delivered.
//
// The caller asks for the time of the next delivery, waits for it, in real or in virtual time, and takes the block. The
// rules for threads are those of Room.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>

#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room.h"
#include "orvex/sim/time.h"

namespace orvex::sim {

class VoiceChannel {
public:
  using Block = std::array<std::int16_t, kVoiceBlockSamples>;

  explicit VoiceChannel(Room& room);  // `room` must outlive this object

  // Starts a recording whose first sample is taken at `now`, and abandons one that is in progress.
  void Start(Time now);
  // Tells the remote to go on recording: its voice window begins anew at `now`. Has no effect when the window has
  // passed already.
  void Extend(Time now);
  // Nothing is delivered afterwards, not even blocks that were recorded before.
  void Stop();

  // When the next block is due: k + 1 blocks after the start for block k, at the microphone's actual rate,
  // plus latency and jitter, but never before the block ahead of it. None: not started, stopped, or the block would be
  // complete only after the voice window or after silentAfterMs. Ask again after Extend(), which may change the answer.
  std::optional<Time> NextDelivery() const;
  // Takes the block that NextDelivery() announced; the room's playback must be known up to that time, or at least to
  // Room::Lookahead() after the block's last sample. Returns false when the block was lost on the way: `block` is
  // unchanged, and the recording continues with the next one. Throws std::logic_error when no delivery is due.
  bool TakeBlock(Block& block);

private:
  Time BlockComplete() const;
  void ScheduleBlock();

  Room& m_Room;
  std::mt19937_64 m_Random;
  bool m_Started = false;
  Time m_Start{};
  Time m_WindowEnd{};
  std::uint64_t m_BlockIndex = 0;  // of the next block
  Time m_Due{};
  bool m_Lost = false;
};

}  // namespace orvex::sim
