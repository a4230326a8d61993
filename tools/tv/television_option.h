// The option that names a virtual television's directory.
#pragma once

#include <filesystem>
#include <string>

#include "options/command.h"
#include "virtual/television.h"

namespace orvex::tools {

inline void AddTelevisionOption(Command& command, std::string& directory) {
  command.Add("--tv", directory, value::Folder(), "directory of the television; default: what ORVEX_TV names");
}

inline virtual_tv::Television TelevisionOf(const std::string& directory) {
  return virtual_tv::Television(directory.empty() ? virtual_tv::Television::DirectoryFromEnvironment()
                                                  : std::filesystem::absolute(directory));
}

}  // namespace orvex::tools
