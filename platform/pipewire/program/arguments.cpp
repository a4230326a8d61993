// What a person asks of the program on the command line of a computer.
#include <orvex_version.h>

#include "linux/program_arguments.h"

namespace {

constexpr char kHelp[] =
    "Usage: orvex-service-pc [--help | --version]\n"
    "\n"
    "Does one calibration run and ends: plays the test sound, measures how late the delayed output plays, and "
    "corrects\n"
    "its delay. orvex-delay runs beside it; ~/.config/orvex/pc.json names the two outputs and the microphone.\n"
    "\n"
    "  -h, --help   print this and exit\n"
    "  --version    print the version and exit\n"
    "\n"
    "Exit code: 0 the run has ended in order, whatever it has found; 1 the main loop could not run; 2 wrong usage; 3\n"
    "another service runs in this session.\n";

// Ahead of the program's other static objects, which have no number.
[[gnu::constructor(101)]] void ReadArguments(int argc, char** argv, char** /*environment*/) {
  orvex::port::AnswerArguments(argc, argv, {"orvex-service-pc", ORVEX_VERSION, kHelp});
}

}  // namespace
