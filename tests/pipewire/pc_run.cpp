#include "pipewire/pc_run.h"

#include "linux/json_text.h"

namespace orvex::integration {

std::unique_ptr<Process> StartPc(LivingRoom& room, const std::vector<std::string>& arguments) {
  return room.GetDaemon().Run("pc-" + arguments.front(), ORVEX_PC_PROGRAM, arguments,
                              {{"ORVEX_PIPEWIRE_PLUGIN", ORVEX_PIPEWIRE_PLUGIN_FILE}});
}

PcOutcome FinishPc(LivingRoom& room, Process& process, const std::string& command) {
  PcOutcome outcome;
  outcome.exitCode = process.WaitForEnd().exitCode.value_or(-1);
  outcome.log = room.GetDaemon().LogOf("pc-" + command);
  try {
    outcome.result = port::ParseJsonObject(outcome.log, "a JSON object");
  } catch (const port::JsonError&) {
    // Left empty: the test shows the log.
  }
  return outcome;
}

PcOutcome RunPc(LivingRoom& room, const std::vector<std::string>& arguments) {
  return FinishPc(room, *StartPc(room, arguments), arguments.front());
}

void PcTest::SetUp() {
  if (std::string(ORVEX_PIPEWIRE_PLUGIN_FILE).empty()) {
    GTEST_SKIP() << "PipeWire's plug-in for libasound is not there; script/pipewire-plugin fetches it";
  }
}

}  // namespace orvex::integration
