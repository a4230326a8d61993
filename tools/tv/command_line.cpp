// Each subcommand adds itself to the parser and throws what goes wrong; messages and exit codes are made here.
#include "tv/command_line.h"

#include <cstdio>
#include <exception>

#include "options/errors.h"
#include "options/usage_message.h"
#include "orvex/sim/room_config.h"
#include "tv/commands.h"
#include "virtual/television.h"

namespace orvex::tools {
namespace {

int ExitCodeOf(const virtual_tv::TelevisionError& error) {
  using Cause = virtual_tv::TelevisionError::Cause;
  const bool usage = error.GetCause() == Cause::kUnknownName || error.GetCause() == Cause::kBadValue;
  return usage ? kExitUsage : kExitFailed;
}

int ReportError(const std::exception& error, int exitCode) {
  std::fprintf(stderr, "orvex-tv: %s\n", error.what());
  return exitCode;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  CLI::App app(
      "A virtual television: run the calibration service on it, read and change its values, send messages.\n"
      "Exit code: 0 done, 1 it could not be done or the calibration did not succeed, 2 wrong usage or bad "
      "input, 128 plus the number of the signal that interrupted a run.");
  NameInMessages(app, "orvex-tv");
  app.require_subcommand(1);
  int exitCode = kExitGood;
  AddRunCommand(app, exitCode);
  AddValueCommands(app, exitCode);
  AddSendCommand(app, exitCode);
  AddEventsCommand(app, exitCode);
  try {
    app.parse(argc, argv);
    return exitCode;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitGood : kExitUsage;
  } catch (const UsageError& error) {
    return ReportError(error, kExitUsage);
  } catch (const sim::RoomError& error) {
    return ReportError(error, kExitUsage);
  } catch (const virtual_tv::TelevisionError& error) {
    return ReportError(error, ExitCodeOf(error));
  } catch (const std::exception& error) {
    return ReportError(error, kExitFailed);
  }
}

}  // namespace orvex::tools
