#include "pipewire/pc_run.h"

#include "linux/json_text.h"

namespace orvex::integration {

std::unique_ptr<Process> StartPc(const PrivateDaemon& daemon, const std::vector<std::string>& arguments) {
  return daemon.Run("pc-" + arguments.front(), ORVEX_PC_PROGRAM, arguments,
                    {{"ORVEX_PIPEWIRE_PLUGIN", ORVEX_PIPEWIRE_PLUGIN_FILE}});
}

PcOutcome FinishPc(const PrivateDaemon& daemon, Process& process, const std::string& command) {
  PcOutcome outcome;
  outcome.exitCode = process.WaitForEnd().exitCode.value_or(-1);
  outcome.log = daemon.LogOf("pc-" + command);
  try {
    outcome.result = port::ParseJsonObject(outcome.log, "a JSON object");
  } catch (const port::JsonError&) {
    // Left empty: the test shows the log.
  }
  return outcome;
}

PcOutcome RunPc(const PrivateDaemon& daemon, const std::vector<std::string>& arguments) {
  return FinishPc(daemon, *StartPc(daemon, arguments), arguments.front());
}

bool SaysThatSoundWasLost(const PcOutcome& outcome) {
  return outcome.result["reason"].asString().find("the computer was too busy and lost sound") != std::string::npos;
}

void PcTest::SetUp() {
  if (std::string(ORVEX_PIPEWIRE_PLUGIN_FILE).empty()) {
    GTEST_SKIP() << "PipeWire's plug-in for libasound is not there; script/pipewire-plugin fetches it";
  }
}

}  // namespace orvex::integration
