// orvex-pc: the living-room computer's command.
#include "pc/command_line.h"

int main(int argc, char** argv) {
  return orvex::tools::RunPcCommandLine(argc, argv);
}
