// libasound looks up ALSA_CONFIG_PATH when it is first used.
#include "linux/alsa_redirection.h"

#include <fcntl.h>

#include <cstdlib>
#include <system_error>

#include "linux/port.h"
#include "linux/small_files.h"

namespace orvex::port {
namespace {

// libasound takes ALSA_CONFIG_PATH as a list that blanks and colons part. A path that has them is reached through a
// descriptor that stays open.
std::string ListEntry(const std::string& path) {
  if (path.find_first_of(" :") == std::string::npos) {
    return path;
  }
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

void RedirectAlsa(const std::filesystem::path& file, const std::string& configuration) {
  try {
    ReplaceFile(file, configuration);
  } catch (const std::system_error& problem) {
    ReportProblem("cannot write " + file.string() + ": " + problem.code().message() + "; there is no sound device");
  }
  // Also when it could not be written: the port does not play on devices that it did not choose.
  ::setenv("ALSA_CONFIG_PATH", ListEntry(file.string()).c_str(), 1);
}

std::string AlsaQuoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      quoted += '\\';
    }
    quoted += character;
  }
  return quoted + '"';
}

}  // namespace orvex::port
