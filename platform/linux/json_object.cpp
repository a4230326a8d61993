// Sets jsoncpp up for strict reading, and refuses a zero byte and deep nesting, which it does not.
#include "linux/json_object.h"

#include <json/reader.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace orvex::port {

Json::Value ParseJsonObject(const std::string& text, const std::string& expected) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value root;
  Json::String errors;
  bool isValid = false;
  if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {  // the parser would stop there
    errors = "byte " + std::to_string(zero) + " is 0";
  } else {
    try {
      isValid = reader->parse(text.data(), text.data() + text.size(), &root, &errors);
    } catch (const Json::Exception& exception) {  // nested too deeply
      errors = exception.what();
    }
  }
  if (!isValid) {
    std::replace(errors.begin(), errors.end(), '\n', ' ');
    throw std::runtime_error("expected " + expected + ": " + errors);
  }
  if (!root.isObject()) {
    throw std::runtime_error("expected " + expected + ", not an array");
  }
  return root;
}

}  // namespace orvex::port
