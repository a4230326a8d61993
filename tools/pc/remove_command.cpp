// orvex-pc remove: everything as it was before setup.
#include <filesystem>

#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/commands.h"
#include "pc/default_output.h"
#include "pc/kept_default.h"
#include "pc/user_service.h"
#include "pipewire/client/delay_node.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

// What is kept is forgotten with the state, when everything else is done.
void PutDefaultBack() {
  const std::optional<std::string> kept = KeptDefault();
  if (!kept) {
    return;
  }
  Daemon daemon;
  if (GetDefaultOutput(daemon) == pipewire::kProgrammeSink) {
    SetDefaultOutput(daemon, *kept);
  }
}

void Remove(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::remove_all(path, error);
  if (error) {
    throw CommandError(path.string() + ": cannot be removed: " + error.message());
  }
}

int RunRemove() {
  PutDefaultBack();
  StopUserService();
  Remove(pipewire::PcConfigFile());
  std::error_code ignored;
  std::filesystem::remove(pipewire::PcConfigFile().parent_path(), ignored);  // unless there is something else in it
  Remove(pipewire::StateFolder());
  StandardOutput out;
  out.Write("the choices, the delay and the service are gone; an orvex-delay that was started by hand goes on\n");
  return out.HasFailed() ? kExitFailed : kExitGood;
}

}  // namespace

void AddRemoveCommand(Command& program) {
  Command& command = program.AddCommand("remove", "take back everything that setup has done");
  command.AddExample("orvex-pc remove");
  command.SetAction(RunRemove);
}

}  // namespace orvex::tools
