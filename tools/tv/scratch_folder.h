// A folder for what a command needs for a while; gone with the object.
#pragma once

#include <filesystem>
#include <string>

namespace orvex::tools {

class ScratchFolder {
public:
  // Throws CommandError.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return m_Path / name; }

private:
  std::filesystem::path m_Path;
};

}  // namespace orvex::tools
