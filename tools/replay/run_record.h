// Everything that the receiver reported about one recording.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "receiver/receiver_rig.h"

namespace orvex::tools {

inline Tone Other(Tone tone) {
  return tone == Tone::k17000Hz ? Tone::k19000Hz : Tone::k17000Hz;
}

struct RecordedBlock {
  std::int32_t buffer = 0;
  ToneMagnitudes levels;
};

enum class EventKind { kAmbient, kFirst17, kFirst19, kSequence, kNoisy17, kNoisy19, kResult, kAbnormal, kExtend };

struct RecordedEvent {
  EventKind kind = EventKind::kAmbient;
  std::int32_t buffer = 0;
  std::int32_t count = 0;    // of a noisy tone
  std::int32_t first = 0;    // buffer of a result's first tone; the second is that of the event
  double differenceS = 0.0;  // of a result
};

// A second tone that made no pair with the first and became a first one itself.
struct SequenceError {
  std::int32_t buffer = 0;
  std::int32_t first = 0;  // buffer of the first tone
  Tone tone = Tone::k17000Hz;
  double level = 0.0;
  double needed = 0.0;  // magnitude that a second tone had to reach, in addition to the threshold

  // False: it was too weak.
  bool IsTooLate() const { return buffer - first > detector::kPairingSpan; }
};

// The magnitude that a second tone has to reach, in addition to the threshold, from a first tone or a pair on.
struct Floor {
  Tone tone = Tone::k17000Hz;
  std::int32_t from = 0;  // buffers
  std::int32_t to = 0;
  double level = 0.0;
};

class RunRecord : public OrvexReceiverObserver {
public:
  // `hearable`: the mode of the receiver.
  explicit RunRecord(bool hearable) : m_Hearable(hearable) {}

  void OnBlock(std::int32_t buffer, const ToneMagnitudes& magnitudes, const Levels& /*ambient*/) override;
  void OnAmbientKnown(std::int32_t buffer, const Levels& means) override;
  void OnFirstTone(std::int32_t buffer, Tone tone, double needed) override;
  void OnSequenceError(std::int32_t buffer, Tone tone, std::int32_t first, double needed) override;
  void OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) override;
  void OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) override;
  void OnAbnormalInput(std::int32_t buffer) override { Add(EventKind::kAbnormal, buffer); }
  void OnExtend(std::int32_t buffer) override { Add(EventKind::kExtend, buffer); }

  bool IsHearable() const { return m_Hearable; }
  const std::vector<RecordedBlock>& GetBlocks() const { return m_Blocks; }
  const std::vector<RecordedEvent>& GetEvents() const { return m_Events; }
  const std::vector<SequenceError>& GetSequenceErrors() const { return m_SequenceErrors; }
  const std::vector<Floor>& GetFloors() const { return m_Floors; }
  std::optional<RecordedEvent> FindFirst(EventKind kind) const;
  // The result that a run of the service applies: the first one, unless abnormal input ended the run before it. What
  // comes later has no effect on the run.
  std::optional<RecordedEvent> FindRunResult() const;
  bool IsRunResult(const RecordedEvent& result) const;
  // Number of the last analysed buffer; 0 when there is none.
  std::int32_t GetLastBuffer() const { return m_Blocks.empty() ? 0 : m_Blocks.back().buffer; }
  // The ambient means; none when the recording ends before they are known.
  const std::optional<Levels>& GetAmbient() const { return m_Ambient; }

private:
  RecordedEvent& Add(EventKind kind, std::int32_t buffer);
  void BeginFloor(const Floor& floor);

  const bool m_Hearable;
  std::vector<RecordedBlock> m_Blocks;
  std::vector<RecordedEvent> m_Events;
  std::vector<SequenceError> m_SequenceErrors;
  std::vector<Floor> m_Floors;
  std::optional<Levels> m_Ambient;
};

}  // namespace orvex::tools
