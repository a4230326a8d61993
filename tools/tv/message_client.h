// Sends a message to a service that runs on a virtual television.
#pragma once

#include <chrono>
#include <string>

namespace orvex::tools {

// Writes `line` to the socket and answers its reply line, without the line end. Throws UsageError for a text of several
// lines or a path too long for a socket, CommandError when nobody listens or no reply comes within `timeout`.
std::string ExchangeMessage(const std::string& socketPath, const std::string& line, std::chrono::milliseconds timeout);

}  // namespace orvex::tools
