// Where this computer keeps its copies of the television's files.
#include "orvex/platform/file_location.h"

#include <cstdlib>
#include <filesystem>

std::string file_location(const std::string& fixedPath) {
  const char* const chosen = std::getenv("ORVEX_RESOURCES");
  if (chosen != nullptr && *chosen != '\0') {
    return chosen + fixedPath;
  }
  std::error_code error;
  return std::filesystem::exists(fixedPath, error) ? fixedPath : ORVEX_RESOURCE_ROOT + fixedPath;
}
