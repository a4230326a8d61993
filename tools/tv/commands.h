// The commands of orvex-tv. Each function adds some to `program`.
#pragma once

#include "options/command.h"

namespace orvex::tools {

void AddRunCommand(Command& program);
void AddRecordCommand(Command& program);
void AddValueCommands(Command& program);
void AddSendCommand(Command& program);
void AddEventsCommand(Command& program);

}  // namespace orvex::tools
