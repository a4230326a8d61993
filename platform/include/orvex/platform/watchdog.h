// Contract: the watchdog service, which ends a process that has stopped notifying it. Main loop only.
//
// The service registers once, when it is created, with a timeout of 120, and notifies every 60 s by an alarm. A main
// loop that hangs therefore ends the process, which is what the watchdog is for.
#pragma once

#include <cstdint>

// Results of both functions.

// The process is under watch, or the notification was taken. A port MAY answer so where nobody watches at all.
constexpr int kWatchdogDone = 0;
// There is no watchdog, it refuses, or the process is not registered.
constexpr int kWatchdogFailed = -1;

// Puts this process under watch. `timeout` is in seconds in the ports here; a watchdog that counts in another unit gets
// the number converted, or it ends the process at once. The service runs on when it is refused.
// Results: kWatchdogDone, kWatchdogFailed.
int watchdog_register(std::int32_t timeout);

// Tells the watchdog that the process is alive. A process that is not registered gets kWatchdogFailed.
// Results: kWatchdogDone, kWatchdogFailed.
int watchdog_notify();
