// orvex-tv: the virtual television's command.
#include "tv/command_line.h"

int main(int argc, char** argv) {
  return orvex::tools::RunCommandLine(argc, argv);
}
