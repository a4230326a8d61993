// The colours that the service gives lines of its log.
#pragma once

#include <string>

namespace orvex::tools {

std::string WithoutColours(const std::string& line);

// Prints a line of the log on standard error: with its colours on a terminal, unless NO_COLOR is set (no-color.org).
void PrintLogLine(const std::string& line);

}  // namespace orvex::tools
