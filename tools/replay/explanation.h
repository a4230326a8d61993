// What was decided about a recording, and why, in plain words.
#pragma once

#include <string>
#include <vector>

#include "replay/run_record.h"

namespace orvex::tools {

// kDoubtful: a difference was found, but its two tones may belong to different bursts of the test sound.
enum class Outcome { kFound, kDoubtful, kNotFound, kAbnormal };

struct Explanation {
  Outcome outcome = Outcome::kNotFound;
  std::string headline;
  std::vector<std::string> reasons;  // sentences
};

// Explains what a television does with the recording: its run ends with the first difference or the first abnormal
// input.
Explanation Explain(const RunRecord& run);

// What became of a tone in a few words: "found in 3 blocks", "12.3 dB short of its threshold".
std::string InBrief(const RunRecord& run, Tone tone);

}  // namespace orvex::tools
