// The option that names a virtual television's directory.
#pragma once

#include <filesystem>
#include <string>

#include "options/command.h"
#include "options/errors.h"
#include "virtual/television.h"

namespace orvex::tools {

inline void AddTelevisionOption(Command& command, std::string& directory) {
  command.Add("--tv", directory, value::Folder(), "directory of the television; default: what ORVEX_TV names");
}

inline virtual_tv::Television TelevisionOf(const std::string& directory) {
  return virtual_tv::Television(directory.empty() ? virtual_tv::Television::DirectoryFromEnvironment()
                                                  : std::filesystem::absolute(directory));
}

// One that there is. Throws CommandError.
inline virtual_tv::Television ExistingTelevision(const std::string& directory) {
  virtual_tv::Television television = TelevisionOf(directory);
  const std::string path = television.GetDirectory().string();
  if (!std::filesystem::is_directory(path)) {
    throw CommandError(path + ": no virtual television is there; orvex-tv run --tv " + path + " makes one");
  }
  return television;
}

}  // namespace orvex::tools
