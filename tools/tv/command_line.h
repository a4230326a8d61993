// The command line of orvex-tv: which subcommands there are, and which exit code an error leads to.
#pragma once

namespace orvex::tools {

// Does what the arguments say and answers the exit code; errors are told on stderr.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace orvex::tools
