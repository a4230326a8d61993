// All that the receiver reported about one recording, kept for looking at it as a whole.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "receiver/receiver_rig.h"

namespace orvex::tools {

// The four frequencies of a block, or their ambient means.
struct Levels {
  double at17000 = 0.0;
  double at17500 = 0.0;
  double at18000 = 0.0;
  double at19000 = 0.0;

  double At(Tone tone) const { return tone == Tone::k17000Hz ? at17000 : at19000; }
};

inline Tone Other(Tone tone) {
  return tone == Tone::k17000Hz ? Tone::k19000Hz : Tone::k17000Hz;
}

struct RecordedBlock {
  std::int32_t buffer = 0;
  Levels levels;
  double ratio17 = 0.0;  // no number in digital silence
  double ratio19 = 0.0;

  double Ratio(Tone tone) const { return tone == Tone::k17000Hz ? ratio17 : ratio19; }
};

enum class EventKind { kAmbient, kFirst17, kFirst19, kSequence, kNoisy17, kNoisy19, kResult, kAbnormal, kExtend };

struct RecordedEvent {
  EventKind kind = EventKind::kAmbient;
  std::int32_t buffer = 0;
  std::int32_t count = 0;    // of a noisy tone
  std::int32_t first = 0;    // buffer of a result's first tone; the second is that of the event
  double differenceS = 0.0;  // of a result
};

class RunRecord : public ReceiverListener {
public:
  // `hearable`: the mode of the receiver.
  explicit RunRecord(bool hearable) : m_Hearable(hearable) {}

  void OnBlock(std::int32_t buffer, const BlockLevels& levels) override;
  void OnAmbient(std::int32_t buffer) override { Add(EventKind::kAmbient, buffer); }
  void OnFirst(std::int32_t buffer, Tone tone) override;
  void OnSequence(std::int32_t buffer) override { Add(EventKind::kSequence, buffer); }
  void OnNoisy(std::int32_t buffer, Tone tone, std::int32_t count) override;
  void OnResult(std::int32_t buffer, std::int32_t first, std::int32_t second, double differenceS) override;
  void OnAbnormal(std::int32_t buffer) override { Add(EventKind::kAbnormal, buffer); }
  void OnExtend(std::int32_t buffer) override { Add(EventKind::kExtend, buffer); }

  bool IsHearable() const { return m_Hearable; }
  const std::vector<RecordedBlock>& GetBlocks() const { return m_Blocks; }
  const std::vector<RecordedEvent>& GetEvents() const { return m_Events; }
  std::optional<RecordedEvent> FindFirst(EventKind kind) const;
  // The result that a run of the service goes by: the first one, unless abnormal input has ended the run before. What
  // comes after it changes nothing in a run.
  std::optional<RecordedEvent> FindRunResult() const;
  bool IsRunResult(const RecordedEvent& result) const;
  // Number of the last analysed buffer; 0 when there is none.
  std::int32_t GetLastBuffer() const { return m_Blocks.empty() ? 0 : m_Blocks.back().buffer; }
  // The ambient means; none when the recording ends before they are known.
  const std::optional<Levels>& GetAmbient() const { return m_Ambient; }

private:
  RecordedEvent& Add(EventKind kind, std::int32_t buffer);

  const bool m_Hearable;
  std::vector<RecordedBlock> m_Blocks;
  std::vector<RecordedEvent> m_Events;
  std::optional<Levels> m_Ambient;
};

}  // namespace orvex::tools
