// Canonical PCM WAV files, in the layout that the player trusts: 12 bytes RIFF, the format chunk, the data chunk.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "output/output_file.h"
#include "testsound/sound_design.h"

namespace orvex::tools {

// A file that cannot be read; the text names it and the cause.
class WaveFileError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

constexpr std::uint64_t kWaveHeaderBytes = 44;  // of all headers, in the canonical layout

// What stands in a file, at the places where the player looks.
struct WaveHeader {
  std::string riffId, waveId, formatId, dataId;
  std::uint32_t riffSize = 0, formatSize = 0, dataSize = 0;
  std::uint16_t formatTag = 0, channels = 0, blockAlign = 0, bitsPerSample = 0;
  std::uint32_t sampleRate = 0, byteRate = 0;
  std::uint64_t fileSize = 0;
  std::uint64_t dataOffset = 0;  // first byte after the data chunk's header
};

// Reads without judging: what a short file lacks reads as zero or empty. Throws WaveFileError when the file cannot be
// read or is larger than 64 MiB.
WaveHeader ReadWaveHeader(const std::string& path);

// The samples of all channels, interleaved. Throws WaveFileError when the file is no usable sound file.
std::vector<std::int16_t> ReadSamples(const std::string& path);

struct WaveFormat {
  std::uint32_t rateHz;
  std::uint16_t channels;
};
constexpr WaveFormat kTestSoundFormat{kSoundRateHz, 2};

// Writes 16 bits, byte for byte the same for the same samples. Throws OutputError.
void WriteWaveFile(const OutputFile& file, const std::vector<std::int16_t>& samples,
                   const WaveFormat& format = kTestSoundFormat);

}  // namespace orvex::tools
