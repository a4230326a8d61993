// One datagram per state to the socket that the environment named.
#include "linux/notify_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "linux/no_destroy.h"
#include "linux/port.h"

namespace orvex::port {
namespace {

// Empty: none was named.
std::string& SocketName() {
  static const NoDestroy<std::string> name;
  return *name;
}

bool Fail(const std::string& reason) {
  ReportProblem("NOTIFY_SOCKET: \"" + SocketName() + "\": " + reason);
  return false;
}

}  // namespace

void TakeNotifySocketFromEnvironment() {
  const char* const name = std::getenv("NOTIFY_SOCKET");
  SocketName() = name == nullptr ? "" : name;
  for (const char* const variable : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) {
    unsetenv(variable);
  }
}

bool HasNotifySocket() {
  return !SocketName().empty();
}

bool SendNotification(const std::string& state) {
  const std::string& name = SocketName();
  sockaddr_un address{};
  if ((name[0] != '/' && name[0] != '@') || name.size() < 2 || name.size() > sizeof address.sun_path - 1) {
    return Fail("expected an absolute path or @name of at most " + std::to_string(sizeof address.sun_path - 1) +
                " bytes");
  }
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.data(), name.size());
  if (name[0] == '@') {
    address.sun_path[0] = '\0';  // an abstract name, which the length ends
  }
  const int fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    return Fail(std::strerror(errno));
  }
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
  const ssize_t count = ::sendto(fd, state.data(), state.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                                 reinterpret_cast<const sockaddr*>(&address), length);
  const int reason = errno;
  ::close(fd);
  return count == static_cast<ssize_t>(state.size()) || Fail(std::strerror(reason));
}

}  // namespace orvex::port
