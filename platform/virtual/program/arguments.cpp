// What a person asks of the program on the command line of a computer. It is answered before anything of a run begins:
// the application object, which logs and makes a television, is made before main().
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "linux/end_signals.h"
#include "virtual/exit_codes.h"

namespace {

constexpr char kHelp[] =
    "Usage: orvex-service [--help | --version]\n"
    "\n"
    "Does one calibration run and ends: plays the test sound, measures how late the optical audio output plays, and\n"
    "corrects its delay. On this computer the television is a directory of files, which ORVEX_TV names; orvex-tv "
    "shows\n"
    "and changes it. See orvex-service(8).\n"
    "\n"
    "  -h, --help   print this and exit\n"
    "  --version    print the version and exit\n"
    "\n"
    "Exit code: 0 the run has ended in order, whatever it has found; 1 the main loop could not run; 2 wrong usage; 3\n"
    "another service runs on this television; 4 there is no television.\n";

[[noreturn]] void Answer(const char* text) {
  const bool isWritten = std::fputs(text, stdout) >= 0 && std::fflush(stdout) == 0;
  if (!isWritten) {
    std::perror("orvex-service: standard output");
  }
  ::_exit(isWritten ? orvex::virtual_tv::kExitInOrder : orvex::virtual_tv::kExitNoMainLoop);
}

// Ahead of the program's other static objects, which have no number.
[[gnu::constructor(101)]] void ReadArguments(int argc, char** argv, char** /*environment*/) {
  // From here on a run ends in order when it is told to.
  orvex::port::HoldEndSignals();
  for (int n = 1; n < argc; ++n) {
    if (std::strcmp(argv[n], "--help") == 0 || std::strcmp(argv[n], "-h") == 0) {
      Answer(kHelp);
    }
    if (std::strcmp(argv[n], "--version") == 0) {
      Answer("orvex-service " ORVEX_VERSION "\n");
    }
  }
  if (argc > 1) {
    std::fprintf(stderr, "orvex-service: unknown argument \"%s\", expected --help, --version or nothing\n", argv[1]);
    ::_exit(orvex::virtual_tv::kExitUsage);
  }
}

}  // namespace
