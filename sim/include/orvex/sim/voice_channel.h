// The remote control's voice channel as a schedule: when which block of microphone samples is delivered.
//
// The caller asks for the next delivery's time, waits for it in whatever time it lives, and takes the block. Same rules
// for threads as Room.
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

  // Starts a recording whose first sample is taken at `now`. While one is going on, it is given up for the new one.
  void Start(Time now);
  // "Go on recording": the voice window begins anew at `now`. Without effect when the remote has fallen silent already.
  void Extend(Time now);
  // Nothing is delivered afterwards, blocks under way included.
  void Stop();

  // When the next block is due: k + 1 blocks after the start for block k, at the microphone's actual rate,
  // plus latency and jitter, never before the block ahead of it. None: not started, stopped, or the block would be
  // complete only after the voice window or after silentAfterMs. Extend() can bring a delivery back: ask again.
  std::optional<Time> NextDelivery() const;
  // Takes the block that NextDelivery() announced; the room's playback must be known up to that time, or at least to
  // Room::Lookahead() after the block's last sample. False: the block was lost on the way, `block` is untouched, the
  // recording goes on behind it. Throws std::logic_error when no delivery is due.
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
