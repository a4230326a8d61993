// Keeps what the receiver reports.
#include "replay/run_record.h"

#include <algorithm>

#include "replay/detector_limits.h"

namespace orvex::tools {

void RunRecord::OnBlock(std::int32_t buffer, const BlockLevels& levels) {
  // The block that ends the ambient phase still shows the sums.
  if (m_Blocks.size() == kAmbientBlocks) {
    m_Ambient = Levels{levels.ambient17000 / kAmbientBlocks, levels.ambient17500 / kAmbientBlocks,
                       levels.ambient18000 / kAmbientBlocks, levels.ambient19000 / kAmbientBlocks};
  }
  m_Blocks.push_back(
      {buffer, {levels.at17000, levels.at17500, levels.at18000, levels.at19000}, levels.ratio17, levels.ratio19});
}

void RunRecord::OnFirst(std::int32_t buffer, Tone tone) {
  Add(tone == Tone::k17000Hz ? EventKind::kFirst17 : EventKind::kFirst19, buffer);
}

void RunRecord::OnNoisy(std::int32_t buffer, Tone tone, std::int32_t count) {
  Add(tone == Tone::k17000Hz ? EventKind::kNoisy17 : EventKind::kNoisy19, buffer).count = count;
}

void RunRecord::OnResult(std::int32_t buffer, std::int32_t first, std::int32_t /*second*/, double differenceS) {
  RecordedEvent& result = Add(EventKind::kResult, buffer);
  result.first = first;
  result.differenceS = differenceS;
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

}  // namespace orvex::tools
