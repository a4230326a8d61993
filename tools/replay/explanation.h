// What was decided about a recording, and why, in plain words.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fine/fine_reading.h"
#include "replay/run_record.h"

namespace orvex::tools {

// kDoubtful: a difference was found, but its two tones may belong to different bursts of the test sound, or one of them
// may be an echo.
enum class Outcome { kFound, kDoubtful, kNotFound, kAbnormal };

struct Explanation {
  Outcome outcome = Outcome::kNotFound;
  std::string headline;
  std::vector<std::string> reasons;  // sentences
};

// Explains what a television does with the recording: its run ends with the first difference or the first abnormal
// input. `fine`: the fine reading of the recording, where there is one.
Explanation Explain(const RunRecord& run, const std::optional<fine::Reading>& fine = std::nullopt);

// The run's difference and the fine reading's are farther apart than a buffer and the fine interval explain.
bool DoContradict(const RunRecord& run, const fine::Reading& fine);

// What became of a tone in a few words: "found in 3 blocks", "12.3 dB short of its threshold".
std::string InBrief(const RunRecord& run, Tone tone);

}  // namespace orvex::tools
