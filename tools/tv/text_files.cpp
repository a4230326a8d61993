// A small file at most; where it cannot be read, the error names it as wrong usage.
#include "tv/text_files.h"

#include <system_error>

#include "linux/small_files.h"
#include "options/errors.h"

namespace orvex::tools {

std::string ReadTextFile(const std::string& path) {
  constexpr std::size_t kLargest = 1u << 20;
  try {
    std::string text = port::ReadSmallFile(path, kLargest);
    if (text.size() > kLargest) {
      throw UsageError(path + ": too large, expected at most " + std::to_string(kLargest) + " bytes");
    }
    return text;
  } catch (const std::system_error& error) {
    throw UsageError(path + ": cannot be read: " + error.code().message());
  }
}

}  // namespace orvex::tools
