// Reads a message, asks the application, writes the reply.
#include "message_answer.h"

#include <json/json.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace orvex::host {
namespace {

std::string OneLine(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

Json::Value Parse(const std::string& line) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value root;
  Json::String errors;
  if (!reader->parse(line.data(), line.data() + line.size(), &root, &errors)) {
    throw std::runtime_error("expected one JSON object per line: " + errors);
  }
  if (!root.isObject()) {
    throw std::runtime_error("expected one JSON object per line, not an array");
  }
  return root;
}

FwMessage ParseMessage(const std::string& line) {
  const Json::Value root = Parse(line);
  const Json::Value type = root.get("type", "");
  if (!type.isString()) {
    throw std::runtime_error("\"type\": " + OneLine(type) + ": expected a text");
  }
  return {type.asString(), root.get("body", Json::Value())};
}

std::string Inject(const Json::Value& body, FwEflApplication& application) {
  const Json::Value id = body.isObject() ? body["id"] : Json::Value();
  if (!id.isInt()) {
    throw std::runtime_error("event \"id\": " + OneLine(id) + ": expected a 32-bit integer");
  }
  if (!SendEvent(FwEvent(id.asInt(), application.GetEventReceiver()))) {
    throw std::runtime_error("the application is ending");
  }
  return "{}";
}

std::string Ask(const FwMessage& message, FwEflApplication& application) {
  FwMessage reply;
  application.IfMessageReceived("", message, reply);
  return reply.body.isNull() ? "{}" : OneLine(reply.body);
}

}  // namespace

std::string ErrorLine(const std::string& text) {
  std::string shown = text;
  std::replace(shown.begin(), shown.end(), '\n', ' ');
  Json::Value error;
  error["error"] = shown;
  return OneLine(error);
}

std::string AnswerMessage(const std::string& line, FwEflApplication& application, bool mayInject) {
  FwMessage message;
  try {
    message = ParseMessage(line);
    if (mayInject && message.type == "event") {
      return Inject(message.body, application);
    }
  } catch (const std::exception& problem) {
    return ErrorLine(problem.what());
  }
  return Ask(message, application);
}

}  // namespace orvex::host
