// What is wrong with a command line, in the words of the person who wrote it.
#pragma once

#include "options/parser.h"

namespace orvex::tools {

// Throws UsageError with the first thing that is wrong, and where more is to be read.
void CheckUsage(const CommandLine& line);

}  // namespace orvex::tools
