// Runs the service as a process of its own and hands its lines over.
#include "tv/service_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "tv/file_descriptor.h"

namespace orvex::tools {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestLine = 1u << 20;
constexpr int kSignalBase = 128;

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

// The signals that this module waits for are blocked while it lives; the child gets the mask of before.
class WatchedSignals {
public:
  WatchedSignals() {
    sigset_t watched;
    sigemptyset(&watched);
    for (const int number : {SIGINT, SIGTERM, SIGCHLD}) {
      sigaddset(&watched, number);
    }
    ::pthread_sigmask(SIG_BLOCK, &watched, &m_Before);
    m_Fd.Reset(::signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK));
  }
  ~WatchedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_Before, nullptr); }
  WatchedSignals(const WatchedSignals&) = delete;
  WatchedSignals& operator=(const WatchedSignals&) = delete;

  int Fd() const { return m_Fd.Get(); }
  const sigset_t& Before() const { return m_Before; }
  // 0: none is pending.
  int Next() const {
    signalfd_siginfo info{};
    return ::read(m_Fd.Get(), &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo) : 0;
  }

private:
  FileDescriptor m_Fd;
  sigset_t m_Before{};
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
    m_OnLine(m_Line);
    m_Line.clear();
  }
  void Finish() {
    if (!m_Line.empty()) {
      Flush();
    }
  }

private:
  const LineReceiver& m_OnLine;
  std::string m_Line;
};

std::vector<std::string> EnvironmentFor(const std::filesystem::path& television) {
  const std::string name = "ORVEX_TV=";
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, name.c_str(), name.size()) != 0) {
      variables.emplace_back(*variable);
    }
  }
  variables.push_back(name + television.string());
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

class Service {
public:
  Service(const ServiceCommand& command, const LineReceiver& onLine) : m_Command(command), m_Lines(onLine) {}

  ServiceEnding Run() {
    const Clock::time_point start = Clock::now();
    m_Deadline = start + m_Command.limit;
    if (Start()) {
      while (!m_Ending.exitCode) {
        WaitOnce();
      }
      TakeOutput();
      m_Lines.Finish();
    }
    while (m_Signals.Next() != 0) {
      // Came too late for the service; the caller still has to clean up.
    }
    m_Ending.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    return m_Ending;
  }

private:
  bool Start() {
    std::vector<std::string> arguments{m_Command.program.string()};
    std::vector<std::string> environment = EnvironmentFor(m_Command.television);
    const std::vector<char*> argumentPointers = Pointers(arguments);
    const std::vector<char*> environmentPointers = Pointers(environment);
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
      ::_exit(kSignalBase + SIGKILL);
    }
    // A group of its own: a terminal's interrupt reaches it once, through us.
    ::setpgid(0, 0);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(m_Output.write.Get(), STDOUT_FILENO);
    ::dup2(m_Output.write.Get(), STDERR_FILENO);
    ::sigprocmask(SIG_SETMASK, &m_Signals.Before(), nullptr);
    ::execve(arguments[0], arguments, environment);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = ::write(failureFd, &reason, sizeof reason);
    ::_exit(kSignalBase - 1);
  }

  void WaitOnce() {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_Deadline - Clock::now());
    if (left.count() <= 0 && !m_Ending.limitReached) {
      m_Ending.limitReached = true;
      ::kill(m_Process, SIGKILL);
    }
    std::array<pollfd, 2> sources{pollfd{m_Output.read.Get(), POLLIN, 0}, pollfd{m_Signals.Fd(), POLLIN, 0}};
    const int timeoutMs = m_Ending.limitReached ? -1 : static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    ::poll(sources.data(), sources.size(), timeoutMs);
    TakeOutput();
    while (const int number = m_Signals.Next()) {
      OnSignal(number);
    }
  }

  void OnSignal(int number) {
    if (number != SIGCHLD) {
      ::kill(m_Process, number);
      return;
    }
    int status = 0;
    if (::waitpid(m_Process, &status, WNOHANG) == m_Process) {
      m_Ending.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalBase + WTERMSIG(status);
    }
  }

  void TakeOutput() {
    std::array<char, 16384> bytes{};
    ssize_t count = 0;
    while ((count = ::read(m_Output.read.Get(), bytes.data(), bytes.size())) > 0) {
      m_Lines.Take(bytes.data(), static_cast<std::size_t>(count));
    }
    if (count == 0) {
      m_Output.read.Reset();  // its end: poll would report it for ever
    }
  }

  const ServiceCommand& m_Command;
  LineSplitter m_Lines;
  WatchedSignals m_Signals;
  Pipe m_Output;
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
  if (exitCode.value_or(0) > kSignalBase) {
    const int number = *exitCode - kSignalBase;
    return "the service was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) + ")";
  }
  return exitCode.value_or(0) == 0 ? "" : "the service ended with exit code " + std::to_string(*exitCode);
}

ServiceEnding RunService(const ServiceCommand& command, const LineReceiver& onLine) {
  return Service(command, onLine).Run();
}

}  // namespace orvex::tools
