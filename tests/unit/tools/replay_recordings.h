// Recordings made block by block, and what the receiver reports about them.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "orvex/platform/remote_voice.h"
#include "replay/report_page.h"
#include "replay/run_record.h"

namespace orvex::tools {

// A sine of a block, from its first sample on.
struct Sine {
  double frequencyHz;
  double amplitude;
};

// Collects blocks of sines over faint noise, which is the same in every recording.
class RecordingMaker {
public:
  void Add(const std::vector<Sine>& sines, bool hasNoise = true);
  // One character per block:
  //   .  the noise alone        7 8  a 17 kHz tone, loud and 6 dB weaker     9 6  likewise 19 kHz
  //   x  17 kHz with a strong neighbour frequency                            y    likewise 19 kHz
  //   b  17 kHz and a weaker 19 kHz                                          0    digital silence
  void Add(const std::string& blocks);
  const std::vector<std::uint8_t>& Bytes() const { return m_Bytes; }

private:
  std::minstd_rand m_Random{1};
  std::vector<std::uint8_t> m_Bytes;
};

// A recording of these blocks.
std::vector<std::uint8_t> MakeRecording(const std::string& blocks);

// The 35 buffers after which the receiver looks for tones.
inline std::string Ambient() {
  return std::string(35, '.');
}

// The lines that orvex-replay prints for a recording.
std::vector<Json::Value> ReplayLines(const std::vector<std::uint8_t>& bytes, bool trace = false, bool hearable = false);

// What the receiver reports about a recording.
RunRecord ReplayRecord(const std::vector<std::uint8_t>& bytes, bool hearable = false);

ReportSubject SubjectOf(const std::vector<std::uint8_t>& bytes, const std::string& file = "dump");
// The page about one recording.
std::string PageOf(const std::vector<std::uint8_t>& bytes, const std::string& file = "dump",
                   const std::optional<fine::Reading>& fine = std::nullopt);

}  // namespace orvex::tools
