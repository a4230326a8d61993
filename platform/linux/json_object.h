// Reads JSON strictly.
#pragma once

#include <json/value.h>

#include <string>

namespace orvex::port {

// Reads a text that is one JSON object and nothing else. Throws std::runtime_error otherwise: "expected ", then
// `expected`, such as "a JSON object", and what is wrong.
Json::Value ParseJsonObject(const std::string& text, const std::string& expected);

}  // namespace orvex::port
