// Platform answers and audio faults to inject: the virtual television's faults.json. Without the file nothing happens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "virtual/fault_table.h"

namespace orvex::virtual_tv {

// Every operation may be called from any thread.
//
// A file that is wrong in one point is reported on stderr and injects nothing at all.
class Faults {
public:
  explicit Faults(std::filesystem::path file);

  // Those of this process's television, read on first use.
  static Faults& Instance();
  // Reads the file again; all calls count from the beginning.
  void Reload();

  // Is there anything to answer `operation` with?
  bool IsListed(const std::string& operation) const;
  // Counts one call of `operation`, such as "voice.start": the answer to give instead of doing it, or empty.
  std::optional<int> Next(const std::string& operation);
  // The frame numbers of `fault`, such as "pcm.underrun_at_frame", ascending; each frame counts once.
  std::vector<std::uint64_t> Frames(const std::string& fault) const;
  // True when `object`, "audio_control" or "event_log", is to be missing.
  bool IsAbsent(const std::string& object) const;

private:
  const std::filesystem::path m_File;
  mutable std::mutex m_Mutex;
  FaultTable m_Table;
  std::map<std::string, std::size_t> m_CallCounts;
};

}  // namespace orvex::virtual_tv
