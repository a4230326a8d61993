// The subcommands of orvex-pc: each adds itself to the parser, and sets the exit code when it is given.
#pragma once

#include <CLI/CLI.hpp>

namespace orvex::tools {

void AddDevicesCommand(CLI::App& app, int& exitCode);
void AddSetupCommand(CLI::App& app, int& exitCode);
void AddCalibrateCommand(CLI::App& app, int& exitCode);
void AddDelayCommand(CLI::App& app, int& exitCode);
void AddStatusCommand(CLI::App& app, int& exitCode);
void AddRemoveCommand(CLI::App& app, int& exitCode);

}  // namespace orvex::tools
