// The commands of orvex-pc. Each function adds one to `program`.
#pragma once

#include "options/command.h"

namespace orvex::tools {

void AddDevicesCommand(Command& program);
void AddSetupCommand(Command& program);
void AddCalibrateCommand(Command& program);
void AddDelayCommand(Command& program);
void AddStatusCommand(Command& program);
void AddRemoveCommand(Command& program);

}  // namespace orvex::tools
