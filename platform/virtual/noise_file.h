// The recording that a room's noise_file names.
#pragma once

#include <string>
#include <vector>

namespace orvex::virtual_tv {

struct NoiseFile {
  std::vector<float> samples;  // the mean of the file's channels; full scale is 1
  double rateHz;
};

// Throws std::runtime_error, which names the file and what was expected.
NoiseFile ReadNoiseFile(const std::string& path);

}  // namespace orvex::virtual_tv
