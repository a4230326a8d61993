// What the blocks of a recording meant to the receiver: how each tone fared, and what the pairing made of them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "replay/run_record.h"

namespace orvex::tools {

// How far a block gets with a tone. Each step is reached only behind the ones above it.
enum class Verdict {
  kNotLookedAt,  // before the ambient means are known, or in the hearable mode
  kWeak,         // below the threshold
  kCovered,      // the other tone is at least as strong
  kNoisy,        // the neighbour frequencies are too strong
  kClean,        // a tone
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

ToneFindings FindTone(const RunRecord& run, Tone tone);

// A second tone that made no pair with the first and became a first one itself.
struct SequenceError {
  std::int32_t buffer = 0;
  std::int32_t first = 0;  // buffer of the first tone
  Tone tone = Tone::k17000Hz;
  double level = 0.0;
  double needed = 0.0;  // what a second tone had to reach, beside the threshold

  // Otherwise it was too weak.
  bool IsTooLate() const;
};

// From the first tone on, or from a result on: what the next second tone has to reach, beside the threshold.
struct Floor {
  Tone tone = Tone::k17000Hz;
  std::int32_t from = 0;  // buffers
  std::int32_t to = 0;
  double level = 0.0;
};

struct Pairing {
  std::vector<SequenceError> errors;
  std::vector<Floor> floors;
};

Pairing FollowPairing(const RunRecord& run);

}  // namespace orvex::tools
