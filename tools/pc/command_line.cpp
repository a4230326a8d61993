// Each subcommand adds itself to the parser and throws what goes wrong; messages and exit codes are made here.
#include "pc/command_line.h"

#include <cstdio>
#include <exception>

#include "options/errors.h"
#include "options/usage_message.h"
#include "output/output_file.h"
#include "pc/commands.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

int ReportError(const std::exception& error, int exitCode) {
  std::fprintf(stderr, "orvex-pc: %s\n", error.what());
  return exitCode;
}

}  // namespace

int RunPcCommandLine(int argc, const char* const* argv) {
  CLI::App app(
      "Brings two outputs of this computer in step, such as a television by HDMI and a soundbar by S/PDIF: chooses "
      "them, measures with the microphone, and delays the earlier one.\n"
      "Exit code: 0 done, 1 it could not be done or the outputs are not in step, 2 wrong usage or bad input, 128 plus "
      "the number of the signal that interrupted a calibration.");
  NameInMessages(app, "orvex-pc");
  app.set_version_flag("--version", "orvex-pc " ORVEX_VERSION, "print the version and exit");
  app.require_subcommand(1);
  int exitCode = kExitGood;
  AddDevicesCommand(app, exitCode);
  AddSetupCommand(app, exitCode);
  AddCalibrateCommand(app, exitCode);
  AddDelayCommand(app, exitCode);
  AddStatusCommand(app, exitCode);
  AddRemoveCommand(app, exitCode);
  try {
    app.parse(argc, argv);
    return exitCode;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitGood : kExitUsage;
  } catch (const UsageError& error) {
    return ReportError(error, kExitUsage);
  } catch (const pipewire::PcConfigError& error) {
    return ReportError(error, kExitUsage);
  } catch (const OutputError& error) {
    return ReportError(error, kExitUsage);
  } catch (const std::exception& error) {
    return ReportError(error, kExitFailed);
  }
}

}  // namespace orvex::tools
