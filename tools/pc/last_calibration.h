// The last calibration of this computer, kept for "orvex-pc status".
#pragma once

#include <json/value.h>

#include "pc/calibration.h"

namespace orvex::tools {

// A calibration that cannot be kept is told on stderr and is as good as any other.
void KeepLastCalibration(const Calibration& calibration);

// Its JSON object with the time, "time_utc"; null when there is none, or it has not been written by
// KeepLastCalibration().
Json::Value LastCalibration();

}  // namespace orvex::tools
