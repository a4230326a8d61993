// What was decided about a recording, and why, in plain words.
#pragma once

#include <string>
#include <vector>

#include "run_record.h"

namespace orvex::tools {

enum class Outcome { kFound, kNotFound, kAbnormal };

struct Explanation {
  Outcome outcome = Outcome::kNotFound;
  std::string headline;
  std::vector<std::string> reasons;  // sentences
};

// As a television acts: its run ends with the first difference or the first abnormal input.
Explanation Explain(const RunRecord& run);

}  // namespace orvex::tools
