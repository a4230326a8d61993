// What was decided about a recording, and why, in plain words.
#pragma once

#include <string>
#include <vector>

#include "replay/run_record.h"

namespace orvex::tools {

// Doubtful: found, but perhaps of tones that do not belong together.
enum class Outcome { kFound, kDoubtful, kNotFound, kAbnormal };

struct Explanation {
  Outcome outcome = Outcome::kNotFound;
  std::string headline;
  std::vector<std::string> reasons;  // sentences
};

// As a television acts: its run ends with the first difference or the first abnormal input.
Explanation Explain(const RunRecord& run);

}  // namespace orvex::tools
