// Reads a message, asks the application, writes the reply.
#include "virtual/message_answer.h"

#include <json/json.h>

#include <algorithm>
#include <stdexcept>

#include "virtual/television_json.h"

namespace orvex::virtual_tv {
namespace {

std::string OneLine(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

FwMessage ParseMessage(const std::string& line) {
  const Json::Value root = ParseJsonObject(line, "one JSON object per line");
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

}  // namespace orvex::virtual_tv
