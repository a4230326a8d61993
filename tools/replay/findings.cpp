// Follows the receiver through a recording.
#include "replay/findings.h"

#include <algorithm>

#include "replay/detector_limits.h"

namespace orvex::tools {
namespace {

const Levels& LevelsAt(const RunRecord& run, std::int32_t buffer) {
  const auto& blocks = run.GetBlocks();
  return std::lower_bound(blocks.begin(), blocks.end(), buffer,
                          [](const RecordedBlock& block, std::int32_t wanted) { return block.buffer < wanted; })
      ->levels;
}

bool ReachesThreshold(double level, double ambient, Tone tone) {
  const double threshold = kToneThreshold * ambient;
  return ambient != 0.0 && (tone == Tone::k17000Hz ? level >= threshold : level > threshold);
}

class PairFollower {
public:
  explicit PairFollower(const RunRecord& run) : m_Run(run) {}

  Pairing Follow() {
    for (const RecordedEvent& event : m_Run.GetEvents()) {
      switch (event.kind) {
        case EventKind::kFirst17:
          Begin(event.buffer, Tone::k17000Hz);
          break;
        case EventKind::kFirst19:
          Begin(event.buffer, Tone::k19000Hz);
          break;
        case EventKind::kSequence:
          AddError(event.buffer);
          break;
        case EventKind::kResult:
          Raise(event.buffer, LevelsAt(m_Run, event.buffer).At(Other(m_FirstTone)));
          break;
        default:
          break;
      }
    }
    return std::move(m_Pairing);
  }

private:
  double& NeededOf(Tone tone) { return tone == Tone::k17000Hz ? m_Needed17 : m_Needed19; }

  void Begin(std::int32_t buffer, Tone tone) {
    m_First = buffer;
    m_FirstTone = tone;
    const Tone second = Other(tone);
    Raise(buffer, std::max(NeededOf(second), LevelsAt(m_Run, buffer).At(second)));
  }

  void Raise(std::int32_t buffer, double level) {
    if (!m_Pairing.floors.empty()) {
      std::int32_t& end = m_Pairing.floors.back().to;
      end = std::min(end, buffer);
    }
    const Tone second = Other(m_FirstTone);
    NeededOf(second) = level;
    m_Pairing.floors.push_back({second, buffer, m_First + kPairingSpan, level});
  }

  // It is always the second tone that is out of sequence.
  void AddError(std::int32_t buffer) {
    const Tone tone = Other(m_FirstTone);
    m_Pairing.errors.push_back({buffer, m_First, tone, LevelsAt(m_Run, buffer).At(tone), NeededOf(tone)});
  }

  const RunRecord& m_Run;
  Pairing m_Pairing;
  std::int32_t m_First = 0;
  Tone m_FirstTone = Tone::k17000Hz;
  double m_Needed17 = 0.0;
  double m_Needed19 = 0.0;
};

}  // namespace

Verdict Judge(const RunRecord& run, const RecordedBlock& block, Tone tone) {
  if (block.buffer <= kAmbientBuffer || run.IsHearable()) {
    return Verdict::kNotLookedAt;
  }
  if (!ReachesThreshold(block.levels.At(tone), run.GetAmbient()->At(tone), tone)) {
    return Verdict::kWeak;
  }
  if (block.levels.At(tone) <= block.levels.At(Other(tone))) {
    return Verdict::kCovered;
  }
  return block.Ratio(tone) < kNeighbourThreshold ? Verdict::kNoisy : Verdict::kClean;
}

ToneFindings FindTone(const RunRecord& run, Tone tone) {
  ToneFindings found;
  for (const RecordedBlock& block : run.GetBlocks()) {
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
      found.bestNoisyRatio = std::max(found.bestNoisyRatio, block.Ratio(tone));
    } else if (verdict == Verdict::kClean && ++found.clean == 1) {
      found.firstClean = block.buffer;
    }
  }
  return found;
}

bool SequenceError::IsTooLate() const {
  return buffer - first > kPairingSpan;
}

Pairing FollowPairing(const RunRecord& run) {
  return PairFollower(run).Follow();
}

}  // namespace orvex::tools
