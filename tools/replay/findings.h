// Says of each block of a recording whether it holds a tone, or why not, and counts that.
#pragma once

#include <cstdint>
#include <optional>

#include "replay/run_record.h"

namespace orvex::tools {

// The first of the receiver's conditions that a block does not meet, in the order in which they are checked.
enum class Verdict {
  kNotLookedAt,  // before the ambient means are known, or in the hearable mode
  kWeak,         // below the threshold
  kCovered,      // the other tone is at least as strong
  kNoisy,        // the neighbour frequencies are too strong
  kClean,        // none: the block holds the tone
};

Verdict Judge(const RunRecord& run, const RecordedBlock& block, Tone tone);

struct ToneFindings {
  std::int32_t reaching = 0;  // blocks that reach the threshold: covered, noisy and clean ones
  std::int32_t covered = 0;
  std::int32_t noisy = 0;
  std::int32_t clean = 0;
  std::int32_t firstClean = 0;             // buffer, 0: none
  double bestNoisyRatio = 0.0;             // of the noisy blocks
  std::optional<RecordedBlock> strongest;  // of the blocks that were looked at
};

// Over the whole recording; over the run when it was given up.
ToneFindings FindTone(const RunRecord& run, Tone tone);

}  // namespace orvex::tools
