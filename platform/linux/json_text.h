// Reads JSON texts strictly and writes them on one line.
#pragma once

#include <json/value.h>

#include <stdexcept>
#include <string>

namespace orvex::port {

// A text is no JSON, or has another shape than expected. The message says where and why, on one line.
class JsonError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// Reads a text that is one object or array and nothing else: no comment, no repeated key, no zero byte. Throws
// JsonError.
Json::Value ParseJson(const std::string& text);

// Reads a text that is one object. Throws JsonError otherwise: "expected ", then `expected`, such as "a JSON object",
// and what is wrong.
Json::Value ParseJsonObject(const std::string& text, const std::string& expected);

// `value` without line breaks and blanks between its parts.
std::string CompactJson(const Json::Value& value);

}  // namespace orvex::port
