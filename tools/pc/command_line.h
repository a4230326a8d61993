// The command line of orvex-pc.
#pragma once

namespace orvex::tools {

// Answers the exit code.
int RunPcCommandLine(int argc, const char* const* argv);

}  // namespace orvex::tools
