// Options that take a whole number.
#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

#include <CLI/CLI.hpp>

namespace orvex::tools {

// For check(): a number from `low` to `high` as one writes it, without sign and leading zeros. The parser itself would
// take -1 for the largest number that there is, and 010 for 8.
inline CLI::Validator WholeNumber(std::uint64_t low = 0,
                                  std::uint64_t high = std::numeric_limits<std::uint64_t>::max()) {
  const std::string lowest = std::to_string(low);
  const std::string highest = std::to_string(high);
  const auto check = [=](const std::string& text) -> std::string {
    std::uint64_t value = 0;
    const bool isNumber = std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
    if (isNumber && std::to_string(value) == text && value >= low && value <= high) {
      return "";
    }
    return "\"" + text + "\": expected a whole number from " + lowest + " to " + highest;
  };
  const bool isLimited = low > 0 || high < std::numeric_limits<std::uint64_t>::max();
  return CLI::Validator(check, isLimited ? "[" + lowest + " - " + highest + "]" : "");
}

}  // namespace orvex::tools
