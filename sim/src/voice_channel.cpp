// Schedules one block at a time: the next is scheduled when the one before it is taken.
#include "orvex/sim/voice_channel.h"

#include <algorithm>
#include <stdexcept>

#include "sim/src/random.h"
#include "sim/src/units.h"

namespace orvex::sim {

VoiceChannel::VoiceChannel(Room& room) : m_Room(room), m_Random(MakeRandom(room.GetConfig().seed, RandomUse::kVoice)) {}

void VoiceChannel::Start(Time now) {
  m_Room.StartRecording(now);
  m_Started = true;
  m_Start = now;
  m_WindowEnd = now + TimeOfMs(m_Room.GetConfig().voiceWindowMs);
  m_BlockIndex = 0;
  m_Due = now;
  ScheduleBlock();
}

void VoiceChannel::Extend(Time now) {
  if (m_Started && now <= m_WindowEnd) {
    m_WindowEnd = now + TimeOfMs(m_Room.GetConfig().voiceWindowMs);
  }
}

void VoiceChannel::Stop() {
  m_Started = false;
}

// When the next block's last sample has been taken.
Time VoiceChannel::BlockComplete() const {
  return m_Room.SampleTime((m_BlockIndex + 1) * kVoiceBlockSamples);
}

// Draws jitter and loss of the next block. It always draws both, so that a change of one setting does not change the
// numbers drawn for the other.
void VoiceChannel::ScheduleBlock() {
  const RoomConfig& config = m_Room.GetConfig();
  std::uniform_real_distribution<double> even(0.0, 1.0);
  const double jitterMs = even(m_Random) * config.voiceJitterMs;
  m_Lost = even(m_Random) < config.voiceLossProbability;
  m_Due = std::max(m_Due, BlockComplete() + TimeOfMs(config.voiceLatencyMs + jitterMs));
}

std::optional<Time> VoiceChannel::NextDelivery() const {
  if (!m_Started || BlockComplete() > m_WindowEnd) {
    return std::nullopt;
  }
  const std::optional<double>& silentAfterMs = m_Room.GetConfig().silentAfterMs;
  if (silentAfterMs && BlockComplete() > m_Start + TimeOfMs(*silentAfterMs)) {
    return std::nullopt;
  }
  return m_Due;
}

bool VoiceChannel::TakeBlock(Block& block) {
  if (!NextDelivery()) {
    throw std::logic_error("VoiceChannel::TakeBlock: no delivery is due");
  }
  Block samples;
  m_Room.Record(samples.data(), samples.size());
  const bool arrived = !m_Lost;
  if (arrived) {
    block = samples;
  }
  ++m_BlockIndex;
  ScheduleBlock();
  return arrived;
}

}  // namespace orvex::sim
