// The watchdog: notifications of a process that is registered, and of one that is not.
#include "orvex/platform/watchdog.h"

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr std::int32_t kTimeout = 60;

class Watchdog : public PortTest {};

TEST_F(Watchdog, TakesNoNotificationBeforeTheRegistration) {
  OnMainLoop([] { EXPECT_EQ(watchdog_notify(), kWatchdogFailed); });
}

TEST_F(Watchdog, TakesNotificationsOfARegisteredProcessOnly) {
  OnMainLoop([] {
    const int result = watchdog_register(kTimeout);
    EXPECT_TRUE(result == kWatchdogDone || result == kWatchdogFailed) << result;
    for (int notification = 0; notification < 3; ++notification) {
      EXPECT_EQ(watchdog_notify(), result);
    }
  });
}

}  // namespace
}  // namespace orvex::conformance
