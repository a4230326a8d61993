// orvex-tv: the virtual television's command.
#include "options/errors.h"
#include "output/standard_output.h"
#include "tv/command_line.h"

int main(int argc, char** argv) {
  using namespace orvex::tools;
  return RunWithStandardOutput("orvex-tv", kExitFailed, [&] { return RunCommandLine(argc, argv); });
}
