// Starts programs by posix_spawn, which is safe from any thread, and waits for them by a process descriptor.
#include "integration/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <system_error>

#include "run/exec_arguments.h"

namespace orvex::integration {
namespace {

// What would lead a service to another television, another sound device or another watchdog.
const std::vector<std::string> kKeptOut{"ORVEX_", "ALSA_", "NOTIFY_SOCKET=", "WATCHDOG_"};

std::vector<std::string> EnvironmentOf(const ProcessCommand& command) {
  std::vector<std::string> variables = tools::EnvironmentWithout(kKeptOut);
  for (const auto& [name, value] : command.environment) {
    variables.push_back(name + "=" + value);
  }
  return variables;
}

class FileActions {
public:
  explicit FileActions(const ProcessCommand& command) {
    posix_spawn_file_actions_init(&m_Actions);
    posix_spawn_file_actions_addopen(&m_Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    AddWriter(STDOUT_FILENO, command.output, command.outputDescriptor);
    AddWriter(STDERR_FILENO, command.errors, command.errorsDescriptor);
  }
  ~FileActions() { posix_spawn_file_actions_destroy(&m_Actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  const posix_spawn_file_actions_t* Get() const { return &m_Actions; }

private:
  void AddWriter(int stream, const std::filesystem::path& file, int descriptor) {
    if (descriptor < 0) {
      posix_spawn_file_actions_addopen(&m_Actions, stream, file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    } else {
      posix_spawn_file_actions_adddup2(&m_Actions, descriptor, stream);
    }
  }

  posix_spawn_file_actions_t m_Actions{};
};

bool IsHeldBack(int signal) {
  sigset_t mask;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, signal) == 1;
}

class Attributes {
public:
  explicit Attributes(const ProcessCommand& command) {
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int number : command.blockedSignals) {
      sigaddset(&blocked, number);
    }
    posix_spawnattr_init(&m_Attributes);
    posix_spawnattr_setsigmask(&m_Attributes, &blocked);
    // Who holds interrupts back ends its children in order: a terminal's interrupt is not to reach them besides.
    posix_spawnattr_setpgroup(&m_Attributes, 0);
    posix_spawnattr_setflags(
        &m_Attributes, IsHeldBack(SIGINT) ? POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP : POSIX_SPAWN_SETSIGMASK);
  }
  ~Attributes() { posix_spawnattr_destroy(&m_Attributes); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  const posix_spawnattr_t* Get() const { return &m_Attributes; }

private:
  posix_spawnattr_t m_Attributes{};
};

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}  // namespace

std::string Describe(const ProcessEnding& ending) {
  if (ending.isLate) {
    return "killed, as it did not end";
  }
  return ending.exitCode ? "exit code " + std::to_string(*ending.exitCode) : "signal " + std::to_string(ending.signal);
}

Process::Process(const ProcessCommand& command) {
  std::vector<std::string> arguments{command.program.string()};
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  std::vector<std::string> environment = EnvironmentOf(command);
  const FileActions actions(command);
  const Attributes attributes(command);
  const int result = posix_spawn(&m_Id, command.program.c_str(), actions.Get(), attributes.Get(),
                                 tools::NullTerminated(arguments).data(), tools::NullTerminated(environment).data());
  if (result != 0) {
    throw std::system_error(result, std::generic_category(), command.program.string());
  }
  m_EndDescriptor = static_cast<int>(::syscall(SYS_pidfd_open, m_Id, 0));
}

Process::~Process() {
  static_cast<void>(WaitForEnd(std::chrono::milliseconds(0)));
  ::close(m_EndDescriptor);
}

// Not from wait4(): that counts the parent's memory from before the program was loaded.
long Process::ReadStatusKib(const std::string& name) const {
  std::ifstream status("/proc/" + std::to_string(m_Id) + "/status");
  const std::string beginning = name + ":";
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(beginning, 0) == 0) {
      return std::stol(line.substr(beginning.size()));
    }
  }
  return -1;
}

long Process::ReadPeakMemoryKib() const {
  return ReadStatusKib("VmHWM");
}

void Process::LimitMemory(long moreKib) const {
  const rlim_t limit = static_cast<rlim_t>(ReadStatusKib("VmSize") + moreKib) * 1024;
  const rlimit limits{limit, limit};
  if (::prlimit(m_Id, RLIMIT_AS, &limits, nullptr) != 0) {
    throw std::system_error(errno, std::generic_category(), "prlimit");
  }
}

void Process::Signal(int number) const {
  if (!m_Ending) {
    ::kill(m_Id, number);
  }
}

bool Process::HasEnded() const {
  pollfd ended{m_EndDescriptor, POLLIN, 0};
  return m_Ending || ::poll(&ended, 1, 0) == 1;
}

ProcessEnding Process::WaitForEnd(std::chrono::milliseconds patience) {
  if (m_Ending) {
    return *m_Ending;
  }
  ProcessEnding ending;
  pollfd ended{m_EndDescriptor, POLLIN, 0};
  if (::poll(&ended, 1, static_cast<int>(patience.count())) != 1) {
    ending.isLate = true;
    ::kill(m_Id, SIGKILL);
  }
  int status = 0;
  rusage usage{};
  ::wait4(m_Id, &status, 0, &usage);
  ending.exitCode = WIFEXITED(status) ? std::optional<int>(WEXITSTATUS(status)) : std::nullopt;
  ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  ending.processorSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  m_Ending = ending;
  return ending;
}

}  // namespace orvex::integration
