// The watchdog by systemd's notification protocol. Without a notification socket there is nobody who watches: that is
// the usual state of a computer and no failure, so the service is told that all is well.
#include "orvex/platform/watchdog.h"

#include <string>

#include "linux/main_loop.h"
#include "virtual/faults.h"
#include "virtual/notify_socket.h"
#include "virtual/report.h"

namespace {

using orvex::port::CurrentMainLoop;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

constexpr int kFailed = -1;
// The main loop whose application is registered: a further one begins anew.
unsigned registeredMainLoop = 0;

bool IsRegistered() {
  return registeredMainLoop != 0 && registeredMainLoop == CurrentMainLoop();
}

}  // namespace

int watchdog_register(std::int32_t timeout) {
  if (const auto fault = Faults::Instance().Next(Fault::kWatchdogRegister)) {
    return *fault;
  }
  if (timeout <= 0) {
    orvex::virtual_tv::ReportProblem("watchdog timeout " + std::to_string(timeout) + ": expected at least 1 s");
    return kFailed;
  }
  const std::string ready = "READY=1\nWATCHDOG_USEC=" + std::to_string(timeout) + "000000";
  if (orvex::virtual_tv::HasNotifySocket() && !orvex::virtual_tv::SendNotification(ready)) {
    return kFailed;
  }
  registeredMainLoop = CurrentMainLoop();
  return 0;
}

int watchdog_notify() {
  if (const auto fault = Faults::Instance().Next(Fault::kWatchdogNotify)) {
    return *fault;
  }
  const bool isTaken =
      IsRegistered() && (!orvex::virtual_tv::HasNotifySocket() || orvex::virtual_tv::SendNotification("WATCHDOG=1"));
  return isTaken ? 0 : kFailed;
}
