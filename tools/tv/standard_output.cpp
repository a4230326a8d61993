// Standard output of a command that has to know whether somebody gets what it says.
#include "tv/standard_output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvex::tools {

void StandardOutput::Write(const std::string& text) {
  for (std::size_t written = 0; written < text.size() && !HasFailed();) {
    const ssize_t count = ::write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      m_Error = errno;
    }
  }
}

std::string StandardOutput::Problem() const {
  return HasFailed() ? std::string("standard output cannot be written: ") + std::strerror(m_Error) : "";
}

}  // namespace orvex::tools
