// A service manager's notification socket, as the service sees it.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace orvex::test {

// The service manager's end: a datagram socket of the given name, an abstract one if the name begins with "@".
class ManagerSocket {
public:
  explicit ManagerSocket(const std::string& name) : m_Fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    if (name[0] == '@') {
      address.sun_path[0] = '\0';
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    EXPECT_EQ(bind(m_Fd, reinterpret_cast<const sockaddr*>(&address), length), 0) << strerror(errno);
  }
  ~ManagerSocket() { close(m_Fd); }
  ManagerSocket(const ManagerSocket&) = delete;
  ManagerSocket& operator=(const ManagerSocket&) = delete;

  std::vector<std::string> Received() const {
    std::vector<std::string> states;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 0; (count = recv(m_Fd, bytes.data(), bytes.size(), 0)) >= 0;) {
      states.emplace_back(bytes.data(), static_cast<std::size_t>(count));
    }
    return states;
  }

private:
  int m_Fd;
};

}  // namespace orvex::test
