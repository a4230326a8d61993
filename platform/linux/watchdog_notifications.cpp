// Keeps the registration and sends the notifications.
#include "linux/watchdog_notifications.h"

#include <string>

#include "linux/main_loop.h"
#include "linux/notify_socket.h"
#include "linux/port.h"
#include "orvex/platform/watchdog.h"

namespace orvex::port {
namespace {

// The main loop whose application is registered: a further one begins anew.
unsigned registeredMainLoop = 0;

bool IsRegistered() {
  return registeredMainLoop != 0 && registeredMainLoop == CurrentMainLoop();
}

}  // namespace

int RegisterAtWatchdog(std::int32_t timeoutSeconds) {
  if (timeoutSeconds <= 0) {
    ReportProblem("watchdog timeout " + std::to_string(timeoutSeconds) + ": expected at least 1 s");
    return kWatchdogFailed;
  }
  const std::string ready = "READY=1\nWATCHDOG_USEC=" + std::to_string(timeoutSeconds) + "000000";
  if (HasNotifySocket() && !SendNotification(ready)) {
    return kWatchdogFailed;
  }
  registeredMainLoop = CurrentMainLoop();
  return kWatchdogDone;
}

int NotifyWatchdog() {
  const bool isTaken = IsRegistered() && (!HasNotifySocket() || SendNotification("WATCHDOG=1"));
  return isTaken ? kWatchdogDone : kWatchdogFailed;
}

}  // namespace orvex::port
