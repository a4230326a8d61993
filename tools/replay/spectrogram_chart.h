// The spectrogram with what the receiver decided drawn into it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/run_record.h"
#include "replay/view.h"

namespace orvex::tools {

// `samples`: of the recording that gave `run`.
std::string DrawSpectrogram(const RunRecord& run, const std::vector<std::int16_t>& samples, const View& view);

}  // namespace orvex::tools
