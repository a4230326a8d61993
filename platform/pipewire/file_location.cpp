// Where this computer keeps its copies of the television's files.
#include "orvex/platform/file_location.h"

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

// Programs are in bin/ beside it.
std::string InstalledFolder() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path().parent_path() / ORVEX_PC_RESOURCE_FOLDER;
}

}  // namespace

std::string file_location(const std::string& fixedPath) {
  const char* const chosen = std::getenv("ORVEX_RESOURCES");
  if (chosen != nullptr && *chosen != '\0') {
    return chosen + fixedPath;
  }
  std::error_code error;
  for (const std::string& path : {InstalledFolder() + fixedPath, fixedPath}) {
    if (fs::exists(path, error)) {
      return path;
    }
  }
  return ORVEX_RESOURCE_ROOT + fixedPath;
}
