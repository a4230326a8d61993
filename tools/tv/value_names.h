// Names of a virtual television's values as a person may write them.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools {

// The full name for a full or short one. Short is any part of the path that only one value has, "delay" or "spdif" for
// "delay/spdif", or else the end of one, from four letters on: "agree" for "…/defaultdisclaimeragree". Throws
// UsageError, which lists the known names.
std::string FullValueName(const std::string& name);

// For completion: the full names of all values; what the value of that name can be, where that is little.
std::vector<std::string> ValueNames();
std::vector<std::string> ValuesOf(const std::string& name);

}  // namespace orvex::tools
