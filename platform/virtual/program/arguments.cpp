// What a person asks of the program on the command line of a computer.
#include <orvex_version.h>

#include "linux/program_arguments.h"

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

// Ahead of the program's other static objects, which have no number.
[[gnu::constructor(101)]] void ReadArguments(int argc, char** argv, char** /*environment*/) {
  orvex::port::AnswerArguments(argc, argv, {"orvex-service", ORVEX_VERSION, kHelp});
}

}  // namespace
