// JSON for lines.
#pragma once

#include <json/value.h>

#include <string>

namespace orvex::port {

// `value` without line breaks and blanks between its parts.
std::string CompactJson(const Json::Value& value);

}  // namespace orvex::port
