// A run under a service manager: what arrives at its notification socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/service_run.h"
#include "support/manager_socket.h"

namespace orvex::integration {
namespace {

// The environment asks for a notification every half second, which a library of the service would obey.
TEST(Notification, ARunTellsThatItHasBegunAndNobodySpeaksInItsName) {
  const TestTelevision television;
  const std::string path = television.PathOf("notify").string();
  const test::ManagerSocket manager(path);
  ServiceRun run(television, {{"NOTIFY_SOCKET", path}, {"WATCHDOG_USEC", "1000000"}});
  EXPECT_EQ("exit code 0", Describe(run.WaitForEnd()));
  EXPECT_THAT(manager.Received(), testing::ElementsAre("READY=1\nWATCHDOG_USEC=120000000"));
}

}  // namespace
}  // namespace orvex::integration
