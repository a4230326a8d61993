// A small file at most; where it cannot be read, the error names it as wrong usage.
#include "tv/text_files.h"

#include <cerrno>
#include <iostream>
#include <iterator>
#include <system_error>

#include "linux/small_files.h"
#include "options/errors.h"

namespace orvex::tools {

namespace {

constexpr std::size_t kLargest = 1u << 20;

// As much as tells whether it is too much.
std::string ReadStandardInput() {
  std::string text(kLargest + 1, '\0');
  std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::cin.gcount()));
  if (std::cin.bad()) {
    throw std::system_error(errno, std::generic_category());
  }
  return text;
}

}  // namespace

std::string ReadTextFile(const std::string& path) {
  try {
    std::string text = path == kStandardInput ? ReadStandardInput() : port::ReadSmallFile(path, kLargest);
    if (text.size() > kLargest) {
      throw UsageError(path + ": too large, expected at most " + std::to_string(kLargest) + " bytes");
    }
    return text;
  } catch (const std::system_error& error) {
    throw UsageError(path + ": cannot be read: " + error.code().message());
  }
}

}  // namespace orvex::tools
