// Platform answers and audio faults to inject: the virtual television's faults.json. Without the file nothing happens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvex::host {

// What the file says, checked.
struct FaultTable {
  struct Answer {
    bool always = false;                    // `calls` has one entry then
    std::vector<std::optional<int>> calls;  // by number of the call
  };
  std::map<std::string, Answer> answers;
  std::map<std::string, std::vector<std::uint64_t>> frames;
  std::set<std::string> absent;
};

// Reads the file's text. Throws std::runtime_error that names key, value and what was expected.
FaultTable ParseFaults(const std::string& text);

// Every operation may be called from any thread.
//
// The file is one JSON object, operation name to answer. An answer is an integer, given at every call, or an array: the
// n-th call gets the n-th entry, null and the calls after the last entry are left alone. An answer stands in place of
// the operation's work. A file that is wrong in one point is reported on stderr and injects nothing at all.
class Faults {
public:
  explicit Faults(std::filesystem::path file);

  // Those of this process's television, read on first use.
  static Faults& Instance();
  // Reads the file again; all calls count from the beginning.
  void Reload();

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

}  // namespace orvex::host
