// The contract's watchdog, for a port that takes watchdog_notifications.h as it is.
#include "orvex/platform/watchdog.h"

#include "linux/watchdog_notifications.h"

int watchdog_register(std::int32_t timeout) {
  return orvex::port::RegisterAtWatchdog(timeout);
}

int watchdog_notify() {
  return orvex::port::NotifyWatchdog();
}
