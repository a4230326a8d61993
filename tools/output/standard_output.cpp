// Watches over standard output while a tool works.
#include "output/standard_output.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace orvex::tools {
namespace {

// A handler that does nothing rather than SIG_IGN: a program that the tool starts gets the default back.
void SurviveClosedPipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  ::sigaction(SIGPIPE, &action, nullptr);
}

// A file gets the lowest free number when it is opened, and would take the place of a closed stream. What is opened
// here fails when it is used, as the closed stream did.
void KeepClosedStreamsUnusable() {
  constexpr int kWrongWay[] = {O_WRONLY, O_RDONLY, O_RDONLY};  // stdin, stdout, stderr
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (::fcntl(stream, F_GETFD) < 0) {
      static_cast<void>(::open("/dev/null", kWrongWay[stream]));
    }
  }
}

// False: standard output lacks something. errno has the cause, or is 0 when it is not known any more.
bool FlushStandardOutput() {
  errno = 0;
  return std::cout.flush().good() && std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

// `error`: 0 when the cause is not known any more.
std::string ProblemText(int error) {
  return std::string("standard output: cannot be written") +
         (error == 0 ? "" : std::string(": ") + std::strerror(error));
}

}  // namespace

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
  return HasFailed() ? ProblemText(m_Error) : "";
}

int RunWithStandardOutput(const char* program, int failureCode, const std::function<int()>& work) {
  SurviveClosedPipes();
  KeepClosedStreamsUnusable();
  const int exitCode = work();
  if (FlushStandardOutput()) {
    return exitCode;
  }
  std::fprintf(stderr, "%s: %s\n", program, ProblemText(errno).c_str());
  return std::max(exitCode, failureCode);
}

}  // namespace orvex::tools
