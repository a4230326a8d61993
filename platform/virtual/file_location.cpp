// Where this computer keeps its copies of the television's files.
#include "orvex/platform/file_location.h"

#include <cstdlib>
#include <filesystem>

#include "virtual/television.h"

namespace {

std::string ResourceRoot() {
  const char* const root = std::getenv("ORVEX_RESOURCES");
  return root != nullptr && *root != '\0' ? root : ORVEX_RESOURCE_ROOT;
}

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace

std::string file_location(const std::string& fixedPath) {
  std::string onTelevision = orvex::virtual_tv::Television::Instance().GetDirectory().string() + fixedPath;
  if (Exists(onTelevision)) {
    return onTelevision;
  }
  return Exists(fixedPath) ? fixedPath : ResourceRoot() + fixedPath;
}
