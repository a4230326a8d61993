// Input files that a person names.
#pragma once

#include <string>

namespace orvex::tools {

constexpr char kStandardInput[] = "-";

// The whole file, or all of standard input, of at most 1 MiB. Throws UsageError, which names the file.
std::string ReadTextFile(const std::string& path);

}  // namespace orvex::tools
