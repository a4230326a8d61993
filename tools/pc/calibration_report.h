// A calibration as text for a person and as JSON.
#pragma once

#include <string>

#include "pc/calibration.h"

namespace orvex::tools {

// One object; what is not known is null.
std::string CalibrationJson(const Calibration& calibration);

// "aligned: before +183.2 ms, now +0.1 ± 0.3 ms; delay 183.2 ms" and the like, one line.
std::string CalibrationText(const Calibration& calibration);

}  // namespace orvex::tools
