// Repeats the receiver's comparisons, in which a tone of 17 kHz may equal its threshold but one of 19 kHz must exceed
// it.
#include "replay/findings.h"

#include <algorithm>
#include <optional>

namespace orvex::tools {
namespace {

bool ReachesThreshold(double level, double ambient, Tone tone) {
  const double threshold = detector::kToneThreshold * ambient;
  return ambient != 0.0 && (tone == Tone::k17000Hz ? level >= threshold : level > threshold);
}

}  // namespace

Verdict Judge(const RunRecord& run, const RecordedBlock& block, Tone tone) {
  if (block.buffer <= detector::kAmbientBuffer || run.IsHearable()) {
    return Verdict::kNotLookedAt;
  }
  if (!ReachesThreshold(block.levels.At(tone), run.GetAmbient()->At(tone), tone)) {
    return Verdict::kWeak;
  }
  if (block.levels.At(tone) <= block.levels.At(Other(tone))) {
    return Verdict::kCovered;
  }
  return block.levels.Ratio(tone) < detector::kNeighbourThreshold ? Verdict::kNoisy : Verdict::kClean;
}

ToneFindings FindTone(const RunRecord& run, Tone tone) {
  ToneFindings found;
  const auto abnormal = run.FindRunResult() ? std::nullopt : run.FindFirst(EventKind::kAbnormal);
  for (const RecordedBlock& block : run.GetBlocks()) {
    if (abnormal && block.buffer > abnormal->buffer) {
      break;
    }
    const Verdict verdict = Judge(run, block, tone);
    if (verdict == Verdict::kNotLookedAt) {
      continue;
    }
    if (!found.strongest || block.levels.At(tone) > found.strongest->levels.At(tone)) {
      found.strongest = block;
    }
    found.reaching += verdict > Verdict::kWeak ? 1 : 0;
    found.covered += verdict == Verdict::kCovered ? 1 : 0;
    if (verdict == Verdict::kNoisy) {
      ++found.noisy;
      found.bestNoisyRatio = std::max(found.bestNoisyRatio, block.levels.Ratio(tone));
    } else if (verdict == Verdict::kClean && ++found.clean == 1) {
      found.firstClean = block.buffer;
    }
  }
  return found;
}

}  // namespace orvex::tools
