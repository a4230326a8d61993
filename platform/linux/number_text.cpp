// Decimal integers of a range.
#include "linux/number_text.h"

#include <charconv>
#include <system_error>

namespace orvex::port {

std::string TrimBlanks(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) {
    return "";
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::int64_t> ParseNumber(const std::string& text, std::int64_t minimum, std::int64_t maximum) {
  const std::string digits = TrimBlanks(text);
  const char* const end = digits.data() + digits.size();
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || number < minimum || number > maximum) {
    return std::nullopt;
  }
  return number;
}

}  // namespace orvex::port
