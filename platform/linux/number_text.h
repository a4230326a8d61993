// Numbers that people and programs write into files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orvex::port {

// `text` without the blanks and line breaks around it.
std::string TrimBlanks(const std::string& text);

// The value of a decimal text, blanks and line breaks around it left aside; empty when it is no integer of this range,
// whose bounds are allowed values.
std::optional<std::int64_t> ParseNumber(const std::string& text, std::int64_t minimum, std::int64_t maximum);

}  // namespace orvex::port
