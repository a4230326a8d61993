// orvex-tv: the virtual television's command.
#include "output/standard_output.h"
#include "tv/command_line.h"
#include "tv/errors.h"

int main(int argc, char** argv) {
  using namespace orvex::tools;
  return RunWithStandardOutput("orvex-tv", kExitFailed, [&] { return RunCommandLine(argc, argv); });
}
