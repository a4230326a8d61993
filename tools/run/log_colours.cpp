#include "run/log_colours.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace orvex::tools {
namespace {

bool MayUseColours() {
  const char* const noColour = std::getenv("NO_COLOR");
  return ::isatty(STDERR_FILENO) == 1 && (noColour == nullptr || *noColour == '\0');
}

}  // namespace

std::string WithoutColours(const std::string& line) {
  std::string text;
  for (std::size_t n = 0; n < line.size(); ++n) {
    if (line[n] != '\033') {
      text += line[n];
      continue;
    }
    n = line.find('m', n);
    if (n == std::string::npos) {
      break;
    }
  }
  return text;
}

void PrintLogLine(const std::string& line) {
  std::fprintf(stderr, "%s\n", (MayUseColours() ? line : WithoutColours(line)).c_str());
}

}  // namespace orvex::tools
