// The page that shows what a calibration heard, as orvex-replay shows a recording.
#pragma once

#include "fine/fine_reading.h"
#include "output/output_file.h"
#include "pc/living_room.h"

namespace orvex::tools {

// `reading`: of what was heard in `run`, or of its part before or after the service's change of the delay. Throws
// OutputError.
void WriteSoundReport(const OutputFile& file, const ServiceRun& run, const fine::Reading& reading);

}  // namespace orvex::tools
