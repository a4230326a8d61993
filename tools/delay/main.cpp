// orvex-delay: the delay line in front of one of two outputs.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "delay/delay_program.h"
#include "options/usage_message.h"
#include "output/standard_output.h"
#include "pipewire/client/pc_config.h"

namespace {

using namespace orvex::tools;

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

constexpr char kDescription[] =
    "Plays what programs play to the sink \"orvex\" on two outputs, on one of them with a delay. The outputs are those "
    "of the file orvex/pc.json in $XDG_CONFIG_HOME, by default ~/.config; \"orvex-pc setup\" writes it. The delay is "
    "set by the calibration; the last one is kept in the file orvex/delay in $XDG_STATE_HOME, by default "
    "~/.local/state. Runs until it is ended.\n\n"
    "Exit code: 0 ended by SIGTERM or SIGINT, 1 it cannot go on, as without a PipeWire daemon, 2 wrong usage or a bad "
    "pc.json.";

void Say(const std::string& text) {
  std::fprintf(stderr, "orvex-delay: %s\n", text.c_str());
}

int Fail(const std::exception& problem, int exitCode) {
  Say(problem.what());
  return exitCode;
}

int Run(int argc, char** argv) {
  CLI::App app(kDescription);
  NameInMessages(app, "orvex-delay");
  app.set_version_flag("--version", "orvex-delay " ORVEX_VERSION, "Print the version and exit");
  try {
    app.parse(argc, argv);
    DelayProgram(orvex::pipewire::ReadPcConfig(orvex::pipewire::PcConfigFile()), Say).Run();
    return kExitDone;
  } catch (const CLI::ParseError& problem) {
    return app.exit(problem) == 0 ? kExitDone : kExitUsage;
  } catch (const orvex::pipewire::PcConfigError& problem) {
    return Fail(problem, kExitUsage);
  } catch (const std::exception& problem) {
    return Fail(problem, kExitFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return RunWithStandardOutput("orvex-delay", kExitFailed, [&] { return Run(argc, argv); });
}
