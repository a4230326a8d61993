// The watchdog by systemd's notification protocol.
#pragma once

#include <cstdint>

namespace orvex::port {

// The operations of the contract header, for a port that does more than that in its own: watchdog.cpp only calls them.
// Without a notification socket there is nobody who watches: that is the usual state of a computer and no failure, so
// the service is told that all is well. Main loop only, after TakeNotifySocketFromEnvironment() (notify_socket.h).
int RegisterAtWatchdog(std::int32_t timeoutSeconds);
int NotifyWatchdog();

}  // namespace orvex::port
