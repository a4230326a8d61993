// The watchdog of the computer's service manager, and its faults.
#include "orvex/platform/watchdog.h"

#include "linux/watchdog_notifications.h"
#include "virtual/faults.h"

using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

int watchdog_register(std::int32_t timeout) {
  if (const auto fault = Faults::Instance().Next(Fault::kWatchdogRegister)) {
    return *fault;
  }
  return orvex::port::RegisterAtWatchdog(timeout);
}

int watchdog_notify() {
  if (const auto fault = Faults::Instance().Next(Fault::kWatchdogNotify)) {
    return *fault;
  }
  return orvex::port::NotifyWatchdog();
}
