// Answers and ends at once.
#include "linux/program_arguments.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "linux/end_signals.h"
#include "linux/exit_codes.h"

namespace orvex::port {
namespace {

[[noreturn]] void Answer(const ProgramTexts& program, const std::string& text) {
  const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (!isWritten) {
    std::perror((std::string(program.name) + ": standard output").c_str());
  }
  ::_exit(isWritten ? kExitInOrder : kExitNoMainLoop);
}

}  // namespace

void AnswerArguments(int argc, char** argv, const ProgramTexts& texts) {
  HoldEndSignals();
  for (int n = 1; n < argc; ++n) {
    const std::string argument = argv[n];
    if (argument == "--help" || argument == "-h") {
      Answer(texts, texts.help);
    }
    if (argument == "--version") {
      Answer(texts, std::string(texts.name) + " " + texts.version + "\n");
    }
  }
  if (argc > 1) {
    std::fprintf(stderr, "%s: unknown argument \"%s\", expected --help, --version or nothing\n", texts.name, argv[1]);
    ::_exit(kExitUsage);
  }
}

}  // namespace orvex::port
