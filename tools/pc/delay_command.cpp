// orvex-pc delay: reads or sets the delay by hand.
#include <fmt/core.h>

#include <memory>
#include <optional>

#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/commands.h"
#include "pc/delay_line_proxy.h"
#include "pipewire/client/delay_node.h"

namespace orvex::tools {
namespace {

int RunDelay(const std::optional<double>& delayMs) {
  Daemon daemon;
  DelayLineProxy line(daemon);
  if (delayMs) {
    line.SetMs(*delayMs);
  }
  StandardOutput out;
  out.Write(fmt::format("{:.3f} ms\n", line.GetMs()));
  return out.HasFailed() ? kExitFailed : kExitGood;
}

}  // namespace

void AddDelayCommand(CLI::App& app, int& exitCode) {
  const auto delayMs = std::make_shared<std::optional<double>>();
  CLI::App* const command = app.add_subcommand("delay", "show the delay that is in force, or set another one");
  command->add_option("MS", *delayMs, "milliseconds, fractions allowed")
      ->check(CLI::Range(0.0, pipewire::kMaximumDelayMs));
  command->callback([=, &exitCode] { exitCode = RunDelay(*delayMs); });
}

}  // namespace orvex::tools
