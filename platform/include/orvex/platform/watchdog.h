// Contract: the watchdog service, which ends a process that has stopped notifying it.
#pragma once

#include <cstdint>

// Puts this process under watch. `timeout` is passed as it stands; its unit is the watchdog's (seconds in the ports
// here). Main loop only. 0: registered. -1: refused, or there is no watchdog; the service runs on unwatched.
int watchdog_register(std::int32_t timeout);

// "Still alive." Main loop only. 0: taken. -1: not registered, or the watchdog cannot be reached.
int watchdog_notify();
