// Values of options from and to their text on the command line.
#pragma once

#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace orvex::tools {

// ReadValue(): false when the text is not, as a whole, a value of that type; `value` is then anything.

inline bool ReadValue(const std::string& text, std::string& value) {
  value = text;
  return true;
}

template <typename Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
bool ReadValue(const std::string& text, Number& value) {
  const char* const end = text.data() + text.size();
  // A sign that the standard library does not read: "+50".
  const char* const begin = text.data() + (text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
  const auto [stop, error] = std::from_chars(begin, end, value);
  return error == std::errc() && stop == end && std::isfinite(static_cast<double>(value));
}

template <typename Value>
bool ReadValue(const std::string& text, std::optional<Value>& value) {
  return ReadValue(text, value.emplace());
}

// The values of an option that may be given several times.
template <typename Value>
bool ReadValue(const std::string& text, std::vector<Value>& values) {
  return ReadValue(text, values.emplace_back());
}

// TextOf(): as a person writes the value; empty when there is none.

inline std::string TextOf(const std::string& value) {
  return value;
}

inline std::string TextOf(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
std::string TextOf(Integer value) {
  return std::to_string(value);
}

template <typename Value>
std::string TextOf(const std::optional<Value>& value) {
  return value ? TextOf(*value) : "";
}

template <typename Value>
std::string TextOf(const std::vector<Value>&) {
  return "";
}

}  // namespace orvex::tools
