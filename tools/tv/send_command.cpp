// orvex-tv send: a message from another application to the running service.
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "linux/json_text.h"
#include "options/errors.h"
#include "tv/commands.h"
#include "tv/message_client.h"
#include "tv/television_option.h"
#include "tv/text_files.h"

namespace orvex::tools {
namespace {

struct SendArguments {
  std::string directory;
  std::string message;
  double timeoutS = 5.0;
};

void CheckMessage(const std::string& message) {
  try {
    static_cast<void>(port::ParseJsonObject(message, "a message like {\"type\": \"...\", \"body\": {...}}"));
  } catch (const std::runtime_error& problem) {
    throw UsageError("\"" + message + "\": " + problem.what());
  }
}

// {"error": ...}: the television did not take the message.
bool IsError(const std::string& reply) {
  try {
    return port::ParseJsonObject(reply, "a reply").isMember("error");
  } catch (const std::runtime_error&) {
    return false;
  }
}

// From standard input it may be written on several lines.
std::string MessageOf(const std::string& argument) {
  if (argument != kStandardInput) {
    CheckMessage(argument);
    return argument;
  }
  const std::string text = ReadTextFile(kStandardInput);
  CheckMessage(text);
  return port::CompactJson(port::ParseJson(text));
}

void Send(const SendArguments& arguments) {
  const std::string message = MessageOf(arguments.message);
  const auto timeout = std::chrono::milliseconds(static_cast<std::int64_t>(arguments.timeoutS * 1000.0));
  const std::string path = TelevisionOf(arguments.directory).PathOf("messages.sock").string();
  const std::string reply = ExchangeMessage(path, message, timeout);
  std::printf("%s\n", reply.c_str());
  if (IsError(reply)) {
    throw CommandError(path + ": the reply is an error");
  }
}

}  // namespace

void AddSendCommand(Command& program) {
  const auto arguments = std::make_shared<SendArguments>();
  Command& command = program.AddCommand("send", "send a message to the running service and print the reply");
  AddTelevisionOption(command, arguments->directory);
  command.Add("JSON", arguments->message, value::Text("JSON"), "the message, one line; -: from standard input")
      .Required();
  command.Add("--timeout", arguments->timeoutS, value::Number("S", 0.001, 3600.0), "longest wait for the reply");
  command.AddExample(R"(orvex-tv send --tv /tmp/mytv '{"type": "request", "body": {"command": "stop"}}')");
  command.SetAction([=] {
    Send(*arguments);
    return kExitGood;
  });
}

}  // namespace orvex::tools
