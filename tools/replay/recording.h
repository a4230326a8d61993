// A recording to be replayed: a debug dump, raw signed 16-bit little-endian mono samples, or a WAV file of one channel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "receiver/receiver_rig.h"

namespace orvex::tools {

// A file that cannot be replayed. The text names the file, what was found and what was expected.
class RecordingError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// The bytes of the recording's samples as the remote delivers them. Samples of another format are converted. The rate
// of a WAV file is always taken to be the remote's; `warning` says so if the file names another one.
struct Recording {
  std::vector<std::uint8_t> bytes;
  std::string warning;
};

// "-" is standard input. Throws RecordingError.
Recording ReadRecording(const std::string& path);

std::vector<std::int16_t> SamplesOf(const Recording& recording);

// Delivers the bytes in whole blocks; the last one may be short. After each block, `progress` is called with the
// number of bytes delivered so far.
void Feed(
    const std::vector<std::uint8_t>& bytes, ReceiverRig& rig,
    const std::function<void(std::size_t)>& progress = [](std::size_t) {});

}  // namespace orvex::tools
