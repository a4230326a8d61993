// Judges a run by what it left: are the two outputs together, and if not, why.
#pragma once

#include <string>

#include "tv/run_summary.h"

namespace orvex::tools {

// The first that applies, in this order, is a run's verdict; kWorse also takes what is left behind the last.
enum class Verdict {
  kFailed,        // the service did not start or did not end in order, or the run was over before it could tell
  kNoDifference,  // the run found no difference
  kNotApplied,    // the delay in force is not the one that the service wanted, or cannot be read
  kAligned,       // at most kAlignedMs remain
  kWorse,         // more remains than there was, or than another delay would have left
  kClamped,       // the delay is at its lowest or highest; what remains cannot be corrected
};

// What may remain of a misalignment, to either side: a run cannot tell apart what lies within a block of the remote's
// audio, 16.5 ms, and the delay is whole milliseconds.
constexpr double kAlignedMs = 17.0;

Verdict VerdictOf(const RunSummary& run);
// The run has done what can be done.
bool IsGood(Verdict verdict);
// As the JSON output has it: "no_difference".
const char* NameOf(Verdict verdict);
// The name, the reason and what remains: "clamped: the delay is 0 and cannot become less; +70.0 ms remain".
std::string VerdictInWords(const RunSummary& run);

}  // namespace orvex::tools
