#include "pc/user_service.h"

#include <string>
#include <vector>

#include "options/errors.h"
#include "run/service_process.h"

namespace orvex::tools {
namespace {

constexpr char kUnit[] = "orvex-delay.service";

// What systemctl says when it does not end well; empty: all is well.
std::string Systemctl(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"systemctl", "--user"});
  arguments.emplace_back(kUnit);
  RunSignals signals;
  std::string said;
  const ServiceEnding ending = RunService({"/usr/bin/env", {}, arguments}, signals, [&](const std::string& line) {
    said = line;
    return true;
  });
  return ending.Problem().empty() ? "" : said.empty() ? ending.Problem() : said;
}

}  // namespace

void StartUserService() {
  // One that runs has read earlier choices.
  for (const char* verb : {"enable", "restart"}) {
    if (const std::string problem = Systemctl({verb}); !problem.empty()) {
      throw CommandError("systemctl --user " + std::string(verb) + " " + kUnit + ": " + problem +
                         "; with --no-service nothing is started, and orvex-delay can run in a terminal");
    }
  }
}

void StopUserService() {
  static_cast<void>(Systemctl({"disable", "--now"}));
}

}  // namespace orvex::tools
