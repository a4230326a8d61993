// Waits for output, signals and the time limit in one poll(); longer lines than 1 MiB are cut in two.
#include "run/service_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <vector>

#include "options/errors.h"
#include "run/exec_arguments.h"
#include "run/file_descriptor.h"

namespace orvex::tools {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestLine = 1u << 20;
constexpr std::size_t kPieceBytes = 16384;
// More than a pipe holds. Signals and the limit are looked at in between.
constexpr int kMostPieces = 80;

struct Pipe {
  Pipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
    read.Reset(ends[0]);
    write.Reset(ends[1]);
  }
  FileDescriptor read;
  FileDescriptor write;
};

// Hands bytes on as lines; the last one may lack its end.
class LineSplitter {
public:
  explicit LineSplitter(const LineReceiver& onLine) : m_OnLine(onLine) {}

  void Take(const char* bytes, std::size_t count) {
    for (const char* const end = bytes + count; bytes != end; ++bytes) {
      if (*bytes == '\n' || m_Line.size() >= kLongestLine) {
        Flush();
      }
      if (*bytes != '\n') {
        m_Line += *bytes;
      }
    }
  }
  void Flush() {
    m_IsEndWanted = !m_OnLine(m_Line) || m_IsEndWanted;
    m_Line.clear();
  }
  void Finish() {
    if (!m_Line.empty()) {
      Flush();
    }
  }
  // Whether the receiver has asked for the service's end.
  bool IsEndWanted() const { return m_IsEndWanted; }

private:
  const LineReceiver& m_OnLine;
  std::string m_Line;
  bool m_IsEndWanted = false;
};

class Service {
public:
  Service(const ServiceCommand& command, RunSignals& signals, const LineReceiver& onLine)
      : m_Command(command), m_Signals(signals), m_Lines(onLine) {}

  ServiceEnding Run() {
    const Clock::time_point start = Clock::now();
    m_Deadline = start + m_Command.limit;
    if (m_Signals.Interruption() == 0 && Start()) {
      while (!m_Ending.exitCode) {
        WaitOnce();
      }
      TakeOutput();
      m_Lines.Finish();
    }
    m_Ending.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    return m_Ending;
  }

private:
  bool Start() {
    std::vector<std::string> arguments{m_Command.program.string()};
    arguments.insert(arguments.end(), m_Command.arguments.begin(), m_Command.arguments.end());
    std::vector<std::string> names;
    for (const std::string& variable : m_Command.variables) {
      names.push_back(variable.substr(0, variable.find('=') + 1));
    }
    std::vector<std::string> environment = EnvironmentWithout(names);
    environment.insert(environment.end(), m_Command.variables.begin(), m_Command.variables.end());
    const std::vector<char*> argumentPointers = NullTerminated(arguments);
    const std::vector<char*> environmentPointers = NullTerminated(environment);
    Pipe failure;  // closed by a successful exec, else it carries errno
    const pid_t parent = ::getpid();
    m_Process = ::fork();
    if (m_Process == 0) {
      Become(parent, argumentPointers.data(), environmentPointers.data(), failure.write.Get());
    }
    const int forkError = errno;
    failure.write.Reset();
    m_Output.write.Reset();
    int reason = forkError;
    if (m_Process > 0 && ::read(failure.read.Get(), &reason, sizeof reason) != sizeof reason) {
      ::fcntl(m_Output.read.Get(), F_SETFL, O_NONBLOCK);
      return true;
    }
    if (m_Process > 0) {
      ::waitpid(m_Process, nullptr, 0);
    }
    m_Ending.startError = m_Command.program.string() + " cannot be started: " + std::strerror(reason);
    return false;
  }

  // In the child: nothing but calls that are safe after a fork.
  [[noreturn]] void Become(pid_t parent, char* const* arguments, char* const* environment, int failureFd) const {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) {
      ::_exit(kExitSignal + SIGKILL);
    }
    // A group of its own: a terminal's interrupt reaches it once, through us.
    ::setpgid(0, 0);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(m_Output.write.Get(), STDOUT_FILENO);
    ::dup2(m_Output.write.Get(), STDERR_FILENO);
    ::sigprocmask(SIG_SETMASK, &m_Signals.MaskBefore(), nullptr);
    ::execve(arguments[0], arguments, environment);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = ::write(failureFd, &reason, sizeof reason);
    ::_exit(kExitSignal - 1);
  }

  void WaitOnce() {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_Deadline - Clock::now());
    if (left.count() <= 0 && !m_Ending.limitReached) {
      m_Ending.limitReached = true;
      ::kill(-m_Process, SIGKILL);  // what it has started, too
    }
    std::array<pollfd, 2> sources{pollfd{m_Output.read.Get(), POLLIN, 0}, pollfd{m_Signals.Fd(), POLLIN, 0}};
    const int timeoutMs = m_Ending.limitReached ? -1 : static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    ::poll(sources.data(), sources.size(), timeoutMs);
    TakeOutput();
    if (m_Lines.IsEndWanted() && !m_IsToldToEnd) {
      TellToEnd();
    }
    while (const int number = m_Signals.Next()) {
      OnSignal(number);
    }
  }

  // By SIGTERM, whatever has come: the service ends in order then.
  void TellToEnd() {
    m_IsToldToEnd = true;
    if (!m_Ending.exitCode) {
      ::kill(m_Process, SIGTERM);
    }
  }

  void OnSignal(int number) {
    if (number != SIGCHLD) {
      TellToEnd();
      return;
    }
    int status = 0;
    if (::waitpid(m_Process, &status, WNOHANG) == m_Process) {
      m_Ending.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : kExitSignal + WTERMSIG(status);
    }
  }

  void TakeOutput() {
    std::array<char, kPieceBytes> bytes{};
    ssize_t count = 1;
    for (int piece = 0; piece < kMostPieces && count > 0; ++piece) {
      count = ::read(m_Output.read.Get(), bytes.data(), bytes.size());
      m_Lines.Take(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count)));
    }
    if (count == 0) {
      m_Output.read.Reset();  // its end: poll would report it for ever
    }
  }

  const ServiceCommand& m_Command;
  RunSignals& m_Signals;
  LineSplitter m_Lines;
  Pipe m_Output;
  bool m_IsToldToEnd = false;
  pid_t m_Process = -1;
  Clock::time_point m_Deadline;
  ServiceEnding m_Ending;
};

}  // namespace

std::string ServiceEnding::Problem() const {
  if (!startError.empty()) {
    return startError;
  }
  if (limitReached) {
    return "the service did not end within " + std::to_string(duration.count()) + " ms and was killed";
  }
  const int number = exitCode.value_or(0) - kExitSignal;
  if (number > 0 && number <= SIGRTMAX) {
    return "the service was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) + ")";
  }
  return exitCode.value_or(0) == 0 ? "" : "the service ended with exit code " + std::to_string(*exitCode);
}

std::filesystem::path FindService(const std::string& given, const char* name) {
  if (!given.empty()) {
    return given;
  }
  const char* const named = std::getenv("ORVEX_SERVICE");
  if (named != nullptr && *named != '\0') {
    return named;
  }
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

ServiceEnding RunService(const ServiceCommand& command, RunSignals& signals, const LineReceiver& onLine) {
  return Service(command, signals, onLine).Run();
}

}  // namespace orvex::tools
