// The commands add themselves; what is said of them here concerns all.
#include "tv/command_line.h"

#include <exception>

#include "options/program.h"
#include "orvex/sim/room_config.h"
#include "tv/commands.h"
#include "virtual/television.h"

namespace orvex::tools {
namespace {

// A room that cannot be, or a value that a television does not have.
bool IsWrongInput(const std::exception& error) {
  using Cause = virtual_tv::TelevisionError::Cause;
  const auto* const ofTelevision = dynamic_cast<const virtual_tv::TelevisionError*>(&error);
  if (ofTelevision != nullptr) {
    return ofTelevision->GetCause() == Cause::kUnknownName || ofTelevision->GetCause() == Cause::kBadValue;
  }
  return dynamic_cast<const sim::RoomError*>(&error) != nullptr;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  Program program("orvex-tv",
                  "A virtual television: run the calibration service on it, read and change its values, send messages.",
                  "0 done, 1 it could not be done or the calibration did not succeed, 2 wrong usage or bad input, 128 "
                  "plus the number of the signal that interrupted a run",
                  kExitFailed);
  program.SetUsageErrors(IsWrongInput);
  AddRunCommand(program);
  AddRecordCommand(program);
  AddValueCommands(program);
  AddSendCommand(program);
  AddEventsCommand(program);
  program.AddExample("orvex-tv run --optical-latency 80 --noise -55");
  program.AddExample("orvex-tv set --tv /tmp/mytv sound/mute 1");
  return program.Run(argc, argv);
}

}  // namespace orvex::tools
