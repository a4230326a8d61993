// Gives the daemon folders of its own by the environment.
#include "pipewire/private_daemon.h"

#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace orvex::integration {
namespace {

namespace fs = std::filesystem;

constexpr char kSocket[] = "pipewire-0";

// Short, as the names of sockets have to be.
fs::path MakeFolder() {
  std::string name = "/tmp/orvex-pw-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), name);
  }
  return name;
}

bool TakesConnections(const fs::path& socketFile) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socketFile.string().copy(address.sun_path, sizeof address.sun_path - 1);
  const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool isTaken = ::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(connection);
  return isTaken;
}

// Between the socket's name and the moment at which it listens there is no event; that is a few instructions.
void WaitForSocket(const fs::path& socketFile, const Process& daemon) {
  const int watch = ::inotify_init1(IN_CLOEXEC);
  ::inotify_add_watch(watch, socketFile.parent_path().c_str(), IN_CREATE);
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  bool isThere = fs::exists(socketFile);
  while (!TakesConnections(socketFile)) {
    if (daemon.HasEnded() || std::chrono::steady_clock::now() > deadline) {
      ::close(watch);
      throw std::runtime_error("the daemon does not begin");
    }
    pollfd events[] = {{watch, POLLIN, 0}, {daemon.GetEndDescriptor(), POLLIN, 0}};
    ::poll(events, 2, isThere ? 1 : static_cast<int>(std::chrono::milliseconds(kPatience).count()));
    isThere = fs::exists(socketFile);
  }
  ::close(watch);
}

void End(std::unique_ptr<Process>& process) {
  if (process) {
    process->Signal(SIGTERM);
    static_cast<void>(process->WaitForEnd());
    process.reset();
  }
}

}  // namespace

PrivateDaemon::PrivateDaemon() : m_Folder(MakeFolder()) {
  m_Environment = {{"XDG_RUNTIME_DIR", m_Folder / "run"},
                   {"XDG_CONFIG_HOME", m_Folder / "config"},
                   {"XDG_STATE_HOME", m_Folder / "state"},
                   {"XDG_CACHE_HOME", m_Folder / "cache"},
                   {"HOME", m_Folder / "home"}};
  for (const auto& [name, folder] : m_Environment) {
    fs::create_directories(folder);
    ::setenv(name.c_str(), folder.c_str(), 1);
  }
  for (const char* name : {"PIPEWIRE_RUNTIME_DIR", "PIPEWIRE_REMOTE", "PIPEWIRE_CONFIG_DIR", "PIPEWIRE_NODE"}) {
    ::unsetenv(name);
  }
  // That of the person leads to his own services.
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  fs::permissions(m_Folder / "run", fs::perms::owner_all);
  Start();
}

PrivateDaemon::~PrivateDaemon() {
  Stop();
  fs::remove_all(m_Folder);
}

void PrivateDaemon::Stop() {
  End(m_SessionManager);
  End(m_Daemon);
}

void PrivateDaemon::Start() {
  m_Daemon = Run("pipewire", ORVEX_PIPEWIRE_PROGRAM, {"-c", ORVEX_PIPEWIRE_TEST_FILES "/daemon.conf"},
                 {{"ALSA_CONFIG_PATH", ORVEX_PIPEWIRE_CARDS_FILE}});
  WaitForSocket(m_Folder / "run" / kSocket, *m_Daemon);
  m_SessionManager = Run("wireplumber", ORVEX_WIREPLUMBER_PROGRAM, {"-c", "policy.conf"});
}

std::unique_ptr<Process> PrivateDaemon::Run(const std::string& name, const fs::path& program,
                                            const std::vector<std::string>& arguments,
                                            const std::map<std::string, std::string>& environment) const {
  const fs::path log = m_Folder / (name + ".log");
  fs::remove(log);
  std::map<std::string, std::string> whole = environment;
  whole.insert(m_Environment.begin(), m_Environment.end());
  return std::make_unique<Process>(ProcessCommand{program, arguments, whole, log, log});
}

std::string PrivateDaemon::LogOf(const std::string& name) const {
  std::ifstream in(m_Folder / (name + ".log"));
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool PrivateDaemon::WaitForLog(const std::string& name, const std::string& text) const {
  const int watch = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  ::inotify_add_watch(watch, (m_Folder / (name + ".log")).c_str(), IN_MODIFY);
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  bool isThere = false;
  while (!(isThere = LogOf(name).find(text) != std::string::npos) && std::chrono::steady_clock::now() < deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd news{watch, POLLIN, 0};
    ::poll(&news, 1, static_cast<int>(left.count()));
    char events[4096];
    while (::read(watch, events, sizeof events) > 0) {
    }
  }
  ::close(watch);
  return isThere;
}

void PrivateDaemon::Signal(int number) const {
  m_Daemon->Signal(number);
}

}  // namespace orvex::integration
