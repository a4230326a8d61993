// Names of a virtual television's values as a person may write them.
#pragma once

#include <string>

namespace orvex::tools {

// The full name for a full or short one. Short is any part of the path that only one value has: "delay" or "spdif" for
// "delay/spdif". Throws UsageError, which lists the known names.
std::string FullValueName(const std::string& name);

}  // namespace orvex::tools
