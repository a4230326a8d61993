// Says whether a test sound is fit for a run, and why not.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "testsound/wave_file.h"

namespace orvex::tools {

// Every answer: one reason per entry, each with the value found and the one expected; empty when fit.

// The headers, as the player takes them on trust.
std::vector<std::string> CheckHeader(const WaveHeader& header);

// The sound itself, interleaved stereo at kSoundRateHz.
std::vector<std::string> CheckSound(const std::vector<std::int16_t>& samples);

// Both; each reason begins with the path. Throws WaveFileError when the file cannot be read.
std::vector<std::string> CheckFile(const std::string& path);

}  // namespace orvex::tools
