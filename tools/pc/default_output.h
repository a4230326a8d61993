// The output that programs play to unless they choose another one.
#pragma once

#include <optional>
#include <string>

#include "pc/daemon.h"

namespace orvex::tools {

// The node that was chosen, whether it is there or not; empty: none was, and the session manager takes one. Throws
// CommandError.
std::string GetDefaultOutput(Daemon& daemon);
// Empty: the session manager is to take one. Throws CommandError.
void SetDefaultOutput(Daemon& daemon, const std::string& node);

}  // namespace orvex::tools
