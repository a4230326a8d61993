// Input files that a person names.
#include "tv/text_files.h"

#include <system_error>

#include "tv/errors.h"
#include "virtual/television_files.h"

namespace orvex::tools {

std::string ReadTextFile(const std::string& path) {
  constexpr std::size_t kLargest = 1u << 20;
  try {
    std::string text = virtual_tv::ReadSmallFile(path, kLargest);
    if (text.size() > kLargest) {
      throw UsageError(path + ": too large, expected at most " + std::to_string(kLargest) + " bytes");
    }
    return text;
  } catch (const std::system_error& error) {
    throw UsageError(path + ": cannot be read: " + error.code().message());
  }
}

}  // namespace orvex::tools
