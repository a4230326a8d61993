// A run under a service manager: what arrives at its notification socket.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "service_run.h"

namespace orvex::integration {
namespace {

class ManagerSocket {
public:
  explicit ManagerSocket(const std::string& path) : m_Fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(m_Fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << std::strerror(errno);
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

// The environment asks for a notification every half second, which a library of the service would obey.
TEST(Notification, ARunTellsThatItHasBegunAndNobodySpeaksInItsName) {
  const TestTelevision television;
  const std::string path = television.PathOf("notify").string();
  const ManagerSocket manager(path);
  ServiceRun run(television, {{"NOTIFY_SOCKET", path}, {"WATCHDOG_USEC", "1000000"}});
  EXPECT_EQ("exit code 0", Describe(run.WaitForEnd()));
  EXPECT_THAT(manager.Received(), testing::ElementsAre("READY=1\nWATCHDOG_USEC=120000000"));
}

}  // namespace
}  // namespace orvex::integration
