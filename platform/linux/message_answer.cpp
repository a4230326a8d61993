// Reads a message, asks the application, writes the reply.
#include "linux/message_answer.h"

#include <algorithm>
#include <stdexcept>

#include "linux/json_text.h"

namespace orvex::port {
namespace {

FwMessage ParseMessage(const std::string& line) {
  const Json::Value root = ParseJsonObject(line, "one JSON object per line");
  const Json::Value type = root.get("type", "");
  if (!type.isString()) {
    throw std::runtime_error("\"type\": " + CompactJson(type) + ": expected a text");
  }
  return {type.asString(), root.get("body", Json::Value())};
}

std::string Inject(const Json::Value& body, FwEflApplication& application) {
  const Json::Value id = body.isObject() ? body["id"] : Json::Value();
  if (!id.isInt()) {
    throw std::runtime_error("event \"id\": " + CompactJson(id) + ": expected a 32-bit integer");
  }
  if (!SendEvent(FwEvent(id.asInt(), application.GetEventReceiver()))) {
    throw std::runtime_error("the application is ending");
  }
  return "{}";
}

std::string Ask(const FwMessage& message, FwEflApplication& application) {
  FwMessage reply;
  application.IfMessageReceived("", message, reply);
  return reply.body.isNull() ? "{}" : CompactJson(reply.body);
}

}  // namespace

std::string ErrorLine(const std::string& text) {
  std::string shown = text;
  std::replace(shown.begin(), shown.end(), '\n', ' ');
  Json::Value error;
  error["error"] = shown;
  return CompactJson(error);
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

std::function<std::string(const std::string& line)> AnswersOf(FwEflApplication* application, bool mayInject) {
  return [=](const std::string& line) { return AnswerMessage(line, *application, mayInject); };
}

}  // namespace orvex::port
