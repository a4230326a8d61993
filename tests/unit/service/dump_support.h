// The files that the debug dump leaves in /tmp: their names as the log tells them, their content, and their removal.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "world/journal.h"

namespace orvex::service_tests {

struct DumpFiles {
  std::string audio;
  std::string results;
};

// Names of this process' files.
inline std::string AudioName(int recording) {
  return "/tmp/audio_dump_" + std::to_string(getpid()) + "_" + std::to_string(recording);
}
inline std::string ResultName(int recording) {
  return "/tmp/audio_result_" + std::to_string(getpid()) + "_" + std::to_string(recording) + ".csv";
}

// The whole content of a file; "(no file)" when there is none.
inline std::string ContentOf(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  if (!in) {
    return "(no file)";
  }
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// How many descriptors of this process are open on a file.
inline int OpenDescriptorsOf(const std::string& name) {
  int count = 0;
  for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    count += std::filesystem::read_symlink(descriptor.path(), gone) == name ? 1 : 0;
  }
  return count;
}

// Knows the recordings of a test from its journal, and deletes their files when the test is over.
class DumpedRecordings {
public:
  DumpedRecordings() = default;
  ~DumpedRecordings() {
    for (const DumpFiles& files : m_Recordings) {
      unlink(files.audio.c_str());
      unlink(files.results.c_str());
    }
  }
  DumpedRecordings(const DumpedRecordings&) = delete;
  DumpedRecordings& operator=(const DumpedRecordings&) = delete;

  // Takes up the recordings that the journal tells of; call it before the journal is cleared.
  void Note(const world::Journal& journal) {
    const std::string beginning = "E0 Temp file name=[";
    for (const std::string& text : journal.Logs()) {
      const std::size_t middle = text.find("][");
      if (text.compare(0, beginning.size(), beginning) == 0 && middle != std::string::npos && text.back() == ']') {
        m_Recordings.push_back({text.substr(beginning.size(), middle - beginning.size()),
                                text.substr(middle + 2, text.size() - middle - 3)});
      }
    }
  }
  // The last one; throws std::out_of_range when there was none.
  const DumpFiles& Last() const { return m_Recordings.at(m_Recordings.size() - 1); }
  std::size_t Count() const { return m_Recordings.size(); }

private:
  std::vector<DumpFiles> m_Recordings;
};

}  // namespace orvex::service_tests
