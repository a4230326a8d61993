// The service manager's notification socket, as systemd's protocol defines it.
#pragma once

#include <string>

namespace orvex::port {

// Takes NOTIFY_SOCKET and its companions out of the environment, so that no library notifies in the service's name.
// To be called before any other thread runs.
void TakeNotifySocketFromEnvironment();

// True when the environment named a socket.
bool HasNotifySocket();

// Sends one state, such as "WATCHDOG=1". False: it could not be sent; the reason is reported.
bool SendNotification(const std::string& state);

}  // namespace orvex::port
