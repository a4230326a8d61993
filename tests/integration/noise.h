// Sounds for the microphone, and magnitudes of what it has recorded.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvex::integration {

// A sound file: silence, then all tones at once, each at a quarter of full scale.
void WriteNoise(const std::string& path, const std::vector<double>& tonesHz, double silenceS, double tonesS);

// Magnitude of one frequency in block `block`, from 0, of a raw dump.
double MagnitudeInDump(const std::string& dump, std::size_t block, double frequencyHz);

}  // namespace orvex::integration
