// The fine reading in a report: beside the receiver's reading, and the onsets that it comes from.
#pragma once

#include <string>

#include "fine/fine_reading.h"
#include "replay/run_record.h"
#include "replay/text.h"

namespace orvex::tools {

// Both readings side by side and to scale. `reading`: of the recording that gave `run`.
std::string MakeReadings(const RunRecord& run, const fine::Reading& reading, const PagePart& part);

// `reading`: by a reader of the standard test sound.
std::string MakeOnsets(const fine::Reading& reading, const PagePart& part);

}  // namespace orvex::tools
