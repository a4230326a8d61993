// orvex-delay: the delay line in front of one of two outputs.
#include <cstdio>
#include <exception>
#include <string>

#include "delay/delay_program.h"
#include "options/program.h"
#include "pipewire/client/pc_config.h"

namespace {

using namespace orvex::tools;
using orvex::pipewire::PcConfigError;

void Say(const std::string& text) {
  std::fprintf(stderr, "orvex-delay: %s\n", text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  Program program(
      "orvex-delay",
      "Plays what programs play to the sink \"orvex\" on two outputs, on one of them with a delay. The outputs are "
      "those "
      "of the file orvex/pc.json in $XDG_CONFIG_HOME, by default ~/.config; \"orvex-pc setup\" writes it. The delay is "
      "set by the calibration; the last one is kept in the file orvex/delay in $XDG_STATE_HOME, by default "
      "~/.local/state. Runs until it is ended.\n",
      "0 ended by SIGTERM or SIGINT, 1 it cannot go on, as without a PipeWire daemon, 2 wrong usage or a bad pc.json",
      kExitFailed);
  program.SetUsageErrors(
      [](const std::exception& problem) { return dynamic_cast<const PcConfigError*>(&problem) != nullptr; });
  program.AddExample("orvex-delay");
  program.AddExample("systemctl --user status orvex-delay");
  program.SetAction([] {
    DelayProgram(orvex::pipewire::ReadPcConfig(orvex::pipewire::PcConfigFile()), Say).Run();
    return kExitGood;
  });
  return program.Run(argc, argv);
}
