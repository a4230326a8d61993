// Also works out from the reports which magnitude a second tone had to reach at each time.
#include "replay/run_record.h"

#include <algorithm>

namespace orvex::tools {

void RunRecord::OnBlock(std::int32_t buffer, const ToneMagnitudes& magnitudes, const Levels& /*ambient*/) {
  m_Blocks.push_back({buffer, magnitudes});
}

void RunRecord::OnAmbientKnown(std::int32_t buffer, const Levels& means) {
  m_Ambient = means;
  Add(EventKind::kAmbient, buffer);
}

void RunRecord::OnFirstTone(std::int32_t buffer, Tone tone, double needed) {
  Add(tone == Tone::k17000Hz ? EventKind::kFirst17 : EventKind::kFirst19, buffer);
  BeginFloor({Other(tone), buffer, buffer + detector::kPairingSpan, needed});
}

void RunRecord::OnSequenceError(std::int32_t buffer, Tone tone, std::int32_t first, double needed) {
  Add(EventKind::kSequence, buffer);
  m_SequenceErrors.push_back({buffer, first, tone, m_Blocks.back().levels.At(tone), needed});
}

void RunRecord::OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) {
  Add(tone == Tone::k17000Hz ? EventKind::kNoisy17 : EventKind::kNoisy19, buffer).count = count;
}

// From here on a second tone has to be at least as strong as the one that completed this pair.
void RunRecord::OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) {
  RecordedEvent& result = Add(EventKind::kResult, buffer);
  result.first = first;
  result.differenceS = differenceS;
  BeginFloor({tone, buffer, first + detector::kPairingSpan, m_Blocks.back().levels.At(tone)});
}

std::optional<RecordedEvent> RunRecord::FindFirst(EventKind kind) const {
  const auto found =
      std::find_if(m_Events.begin(), m_Events.end(), [=](const RecordedEvent& event) { return event.kind == kind; });
  return found == m_Events.end() ? std::nullopt : std::make_optional(*found);
}

std::optional<RecordedEvent> RunRecord::FindRunResult() const {
  const auto end = std::find_if(m_Events.begin(), m_Events.end(), [](const RecordedEvent& event) {
    return event.kind == EventKind::kResult || event.kind == EventKind::kAbnormal;
  });
  return end != m_Events.end() && end->kind == EventKind::kResult ? std::make_optional(*end) : std::nullopt;
}

bool RunRecord::IsRunResult(const RecordedEvent& result) const {
  const auto own = FindRunResult();
  return own && result.buffer == own->buffer;
}

RecordedEvent& RunRecord::Add(EventKind kind, std::int32_t buffer) {
  m_Events.push_back({kind, buffer});
  return m_Events.back();
}

void RunRecord::BeginFloor(const Floor& floor) {
  if (!m_Floors.empty()) {
    m_Floors.back().to = std::min(m_Floors.back().to, floor.from);
  }
  m_Floors.push_back(floor);
}

}  // namespace orvex::tools
