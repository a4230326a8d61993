// The option that names a virtual television's directory.
#pragma once

#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

#include "virtual/television.h"

namespace orvex::tools {

inline void AddTelevisionOption(CLI::App& command, std::string& directory) {
  command.add_option("--tv", directory, "directory of the television; default: what ORVEX_TV names")->type_name("DIR");
}

inline virtual_tv::Television TelevisionOf(const std::string& directory) {
  return virtual_tv::Television(directory.empty() ? virtual_tv::Television::DirectoryFromEnvironment()
                                                  : std::filesystem::absolute(directory));
}

}  // namespace orvex::tools
