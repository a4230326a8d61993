// jsoncpp's strict mode stops at a zero byte and throws where values are nested too deeply; both are errors here.
#include "linux/json_text.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <memory>

namespace orvex::port {
namespace {

// Reads `text` into `root`. Returns what is wrong; empty: nothing.
std::string ReadStrictly(const std::string& text, Json::Value& root) {
  if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {
    return "byte " + std::to_string(zero) + " is 0";
  }
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::String errors;
  try {
    return reader->parse(text.data(), text.data() + text.size(), &root, &errors) ? "" : errors;
  } catch (const Json::Exception& exception) {
    return exception.what();
  }
}

}  // namespace

Json::Value ParseJson(const std::string& text) {
  Json::Value root;
  std::string error = ReadStrictly(text, root);
  if (!error.empty()) {
    std::replace(error.begin(), error.end(), '\n', ' ');
    throw JsonError(error);
  }
  return root;
}

Json::Value ParseJsonObject(const std::string& text, const std::string& expected) {
  Json::Value root;
  try {
    root = ParseJson(text);
  } catch (const JsonError& error) {
    throw JsonError("expected " + expected + ": " + error.what());
  }
  if (!root.isObject()) {
    throw JsonError("expected " + expected + ", not an array");
  }
  return root;
}

std::string CompactJson(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

}  // namespace orvex::port
