// Platform answers and audio faults to inject: the virtual television's faults.json. Without the file nothing happens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
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
  // For tests, which change the file of a running process: reads it again; all calls count from the beginning.
  void Reload();

  // Is there anything to answer `operation` with?
  bool IsListed(Fault operation) const;
  // Counts one call of `operation`: the answer to give instead of doing it, or empty.
  std::optional<int> Next(Fault operation);
  // The frame numbers of `fault`, one of the sound device, ascending; each frame counts once.
  std::vector<std::uint64_t> Frames(Fault fault) const;
  // Is `object`, kAudioControl or kEventLog, to be missing?
  bool IsAbsent(Fault object) const;

private:
  const std::filesystem::path m_File;
  mutable std::mutex m_Mutex;
  FaultTable m_Table;
  std::map<Fault, std::size_t> m_CallCounts;
};

}  // namespace orvex::virtual_tv
