// Files lie where the television has them.
#include "orvex/platform/file_location.h"

std::string file_location(const std::string& fixedPath) {
  return fixedPath;
}
