// The commands add themselves; what is said of them here concerns all.
#include "pc/command_line.h"

#include <exception>

#include "options/program.h"
#include "pc/commands.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {

int RunPcCommandLine(int argc, const char* const* argv) {
  Program program("orvex-pc",
                  "Brings two outputs of this computer in step, such as a television by HDMI and a soundbar by S/PDIF: "
                  "chooses them, measures with the microphone, and delays the earlier one.",
                  "0 done, 1 it could not be done or the outputs are not in step, 2 wrong usage or bad input, 128 plus "
                  "the number of the signal that interrupted a calibration",
                  kExitFailed);
  program.SetUsageErrors(
      [](const std::exception& error) { return dynamic_cast<const pipewire::PcConfigError*>(&error) != nullptr; });
  AddDevicesCommand(program);
  AddSetupCommand(program);
  AddCalibrateCommand(program);
  AddDelayCommand(program);
  AddStatusCommand(program);
  AddRemoveCommand(program);
  program.AddExample("orvex-pc setup");
  program.AddExample("orvex-pc calibrate");
  return program.Run(argc, argv);
}

}  // namespace orvex::tools
