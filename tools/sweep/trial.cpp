// A run in virtual time.
#include "sweep/trial.h"

#include <algorithm>
#include <array>
#include <optional>

#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "receiver/receiver_rig.h"

namespace orvex::tools {
namespace {

using sim::Time;

constexpr Time kLongestRun = std::chrono::seconds(10);
// What the device holds of the sound when the last write returns: a full buffer of 102.4 ms.
constexpr std::size_t kDeviceFrames = 4915;

Time TimeOfMs(double ms) {
  return Time(static_cast<Time::rep>(ms * 1e6));
}

double ToMs(Time time) {
  return static_cast<double>(time.count()) * 1e-6;
}

class VirtualRun : private OrvexReceiverObserver {
public:
  explicit VirtualRun(const Trial& trial)
      : m_Trial(trial),
        m_Room(trial.room),
        m_Voice(m_Room),
        m_Rig({this}),
        m_Late(TimeOfMs(trial.lateMs)),
        m_End(kLongestRun + m_Late) {
    m_Room.SetSpdifDelayMs(trial.outputDelayMs);
    if (!trial.disturbance.empty()) {
      const bool isAtOwnRate = trial.disturbanceRateHz != 0.0;
      m_Room.SetNoise(trial.disturbance, isAtOwnRate ? trial.disturbanceRateHz : trial.room.microphoneRateHz);
    }
  }

  TrialOutcome Run() {
    m_Voice.Start(Time(0));
    for (std::optional<Time> due = m_Voice.NextDelivery(); due && *due < m_End; due = m_Voice.NextDelivery()) {
      DeliverAt(*due);
    }
    ActOnEnd();
    m_Outcome.decidedMs = ToMs(m_End);
    m_Outcome.endedMs = ToMs(std::max(m_End, m_WrittenAt));
    return m_Outcome;
  }

  std::vector<std::int16_t> Record(Time listening) {
    std::vector<std::int16_t> recording;
    const auto isOver = [&](std::uint64_t sample) {
      return m_SoundStart && m_Room.SampleTime(sample) >= *m_SoundStart + listening;
    };
    m_Voice.Start(Time(0));
    std::uint64_t first = 0;
    for (std::optional<Time> due = m_Voice.NextDelivery(); due && !isOver(first); due = m_Voice.NextDelivery()) {
      const std::optional<Block> block = DeliverAt(*due);
      for (std::size_t n = 0; block && n < block->size() && !isOver(first + n); ++n) {
        recording.push_back((*block)[n]);
      }
      first += kVoiceBlockSamples;
    }
    return recording;
  }

private:
  using Block = sim::VoiceChannel::Block;
  enum class End { kTimer, kSync, kAbnormal };

  // The main loop acts on the event that came first.
  void EndBy(End event, Time comes) {
    const Time acts = comes + m_Late;
    if (acts < m_End) {
      m_End = acts;
      m_EndedBy = event;
    }
  }

  // Results and the end of the playback alike make it read what the receiver holds.
  void ActOnEnd() {
    if (m_EndedBy == End::kSync) {
      m_Outcome.differenceMs = m_Rig.GetDifferenceS() * 1e3;
      m_Outcome.ending = m_Outcome.differenceMs != 0.0 ? Ending::kFound : Ending::kNothing;
    } else if (m_EndedBy == End::kAbnormal) {
      m_Outcome.ending = Ending::kAbnormal;
    }
  }

  // None: the block is lost.
  std::optional<Block> DeliverAt(Time due) {
    m_Now = due;
    Block block;
    if (!m_Voice.TakeBlock(block)) {
      return std::nullopt;
    }
    std::array<std::uint8_t, kVoiceBlockBytes> bytes;
    for (std::size_t n = 0; n < block.size(); ++n) {
      const auto bits = static_cast<std::uint16_t>(block[n]);
      bytes[2 * n] = static_cast<std::uint8_t>(bits & 0xFFU);
      bytes[2 * n + 1] = static_cast<std::uint8_t>(bits >> 8U);
    }
    m_Rig.Deliver(bytes.data(), static_cast<std::uint16_t>(bytes.size()));
    return block;
  }

  void OnAmbientKnown(std::int32_t /*buffer*/, const Levels& /*means*/) override {
    const std::size_t frames = m_Trial.sound.size() / 2;
    const std::size_t playedWhenWritten = frames - std::min(frames, kDeviceFrames);
    const Time start = m_Now + m_Late + TimeOfMs(m_Trial.startMs);
    m_SoundStart = start;
    m_Room.Play(start, m_Trial.sound.data(), frames);
    m_WrittenAt = start + TimeOfMs(static_cast<double>(playedWhenWritten) * 1e3 / sim::Room::kPlaybackRateHz);
    EndBy(End::kSync, m_WrittenAt);
  }
  void OnPair(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double differenceS) override {
    if (m_Outcome.firstDifferenceMs == 0.0) {
      m_Outcome.firstDifferenceMs = differenceS * 1e3;
    }
    m_Rig.GetReceiver().SetFinished(m_Trial.finishedMark);
    EndBy(End::kSync, m_Now);
  }
  void OnAbnormalInput(std::int32_t /*buffer*/) override { EndBy(End::kAbnormal, m_Now); }
  void OnExtend(std::int32_t /*buffer*/) override { m_Voice.Extend(m_Now); }

  const Trial& m_Trial;
  sim::Room m_Room;
  sim::VoiceChannel m_Voice;
  ReceiverRig m_Rig;
  const Time m_Late;
  Time m_Now{0};
  Time m_End;
  End m_EndedBy = End::kTimer;
  std::optional<Time> m_SoundStart;
  Time m_WrittenAt{0};
  TrialOutcome m_Outcome;
};

}  // namespace

TrialOutcome RunTrial(const Trial& trial) {
  return VirtualRun(trial).Run();
}

std::vector<std::int16_t> RecordTrial(const Trial& trial, double listenMs) {
  return VirtualRun(trial).Record(TimeOfMs(listenMs));
}

}  // namespace orvex::tools
