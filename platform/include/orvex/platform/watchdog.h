// Contract: the watchdog service, which ends a process that has stopped notifying it.
#pragma once

#include <cstdint>

// Results of both functions.
constexpr int kWatchdogDone = 0;     // registered, or the notification was taken
constexpr int kWatchdogFailed = -1;  // there is no watchdog, it refuses, or nothing is registered

// Puts this process under watch. `timeout` is passed as it stands; its unit is the watchdog's (seconds in the ports
// here). Main loop only. kWatchdogFailed: the service runs on unwatched.
int watchdog_register(std::int32_t timeout);

// "Still alive." Main loop only.
int watchdog_notify();
