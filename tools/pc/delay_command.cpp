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

void AddDelayCommand(Command& program) {
  const auto delayMs = std::make_shared<std::optional<double>>();
  Command& command = program.AddCommand("delay", "show the delay that is in force, or set another one");
  command.Add("MS", *delayMs, value::Number("MS", 0.0, pipewire::kMaximumDelayMs), "milliseconds, fractions allowed");
  command.AddExample("orvex-pc delay 132.5");
  command.SetAction([=] { return RunDelay(*delayMs); });
}

}  // namespace orvex::tools
