// The subcommands. Each function adds one to `app`; when it is chosen, parsing runs it and leaves its exit code in
// `exitCode`. Errors come out of the parse as exceptions.
#pragma once

#include <CLI/CLI.hpp>

namespace orvex::tools {

void AddRunCommand(CLI::App& app, int& exitCode);
void AddValueCommands(CLI::App& app, int& exitCode);
void AddSendCommand(CLI::App& app, int& exitCode);
void AddEventsCommand(CLI::App& app, int& exitCode);

}  // namespace orvex::tools
