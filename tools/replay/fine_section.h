// The section of a report that shows the fine reading: how it compares with the receiver's difference, and the onsets.
#pragma once

#include <string>

#include "fine/fine_reading.h"
#include "replay/run_record.h"

namespace orvex::tools {

// `reading`: of the recording that gave `run`, by a reader of the standard test sound.
std::string MakeFineSection(const RunRecord& run, const fine::Reading& reading);

}  // namespace orvex::tools
