// orvex-tv send: a message from another application to the running service.
#include <cstdio>
#include <memory>

#include "tv/commands.h"
#include "tv/errors.h"
#include "tv/message_client.h"
#include "tv/television_option.h"

namespace orvex::tools {
namespace {

struct SendArguments {
  std::string directory;
  std::string message;
  double timeoutS = 5.0;
};

}  // namespace

void AddSendCommand(CLI::App& app, int& exitCode) {
  const auto arguments = std::make_shared<SendArguments>();
  CLI::App* const command = app.add_subcommand("send", "send a message to the running service and print the reply");
  AddTelevisionOption(*command, arguments->directory);
  command->add_option("JSON", arguments->message, "the message, one line")->required();
  command->add_option("--timeout", arguments->timeoutS, "longest wait for the reply")
      ->type_name("S")
      ->check(CLI::Range(0.001, 3600.0))
      ->capture_default_str();
  command->callback([=, &exitCode] {
    const auto timeout = std::chrono::milliseconds(static_cast<std::int64_t>(arguments->timeoutS * 1000.0));
    const std::string path = TelevisionOf(arguments->directory).PathOf("messages.sock").string();
    std::printf("%s\n", ExchangeMessage(path, arguments->message, timeout).c_str());
    exitCode = kExitGood;
  });
}

}  // namespace orvex::tools
