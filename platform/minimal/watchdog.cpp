// No watchdog.
#include "orvex/platform/watchdog.h"

int watchdog_register(std::int32_t /*timeout*/) {
  return kWatchdogFailed;
}

int watchdog_notify() {
  return kWatchdogFailed;
}
