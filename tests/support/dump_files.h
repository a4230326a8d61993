// The two files of each recording that the debug dump leaves in /tmp: their names, content and removal.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <system_error>

namespace orvex::test {

// Files of this process, by the number of the recording.
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

// The files of this process's recordings. The constructor deletes what an earlier process with the same process
// number has left under their names, and the destructor what lies there by then.
class DumpFiles {
public:
  DumpFiles() { DeleteAll(); }
  ~DumpFiles() { DeleteAll(); }
  DumpFiles(const DumpFiles&) = delete;
  DumpFiles& operator=(const DumpFiles&) = delete;

  // What the last recording has left. There must be one.
  static std::string Audio() { return ContentOf(AudioName(Last())); }
  static std::string Results() { return ContentOf(ResultName(Last())); }

private:
  static std::set<int> Recordings() {
    std::set<int> numbers;
    for (const auto& file : std::filesystem::directory_iterator("/tmp")) {
      for (const std::string& name : {AudioName(0), ResultName(0)}) {
        const std::string beginning = name.substr(0, name.rfind('_') + 1);
        if (file.path().string().compare(0, beginning.size(), beginning) == 0) {
          numbers.insert(std::atoi(file.path().c_str() + beginning.size()));
        }
      }
    }
    return numbers;
  }
  static void DeleteAll() {
    for (const int recording : Recordings()) {
      std::filesystem::remove_all(AudioName(recording));
      std::filesystem::remove_all(ResultName(recording));
    }
  }
  static int Last() { return Recordings().empty() ? 0 : *Recordings().rbegin(); }
};

}  // namespace orvex::test
