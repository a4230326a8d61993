// orvex-pc: the living-room computer's command.
#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/command_line.h"

int main(int argc, char** argv) {
  using namespace orvex::tools;
  return RunWithStandardOutput("orvex-pc", kExitFailed, [&] { return RunPcCommandLine(argc, argv); });
}
