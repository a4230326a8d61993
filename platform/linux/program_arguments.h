// What a person asks of a service's program on the command line.
#pragma once

namespace orvex::port {

struct ProgramTexts {
  const char* name;
  const char* version;
  const char* help;  // ends with a line break
};

// Answers --help and --version, and refuses every other argument: the process ends then. Returns when there is none.
// To be called before anything of a run begins: the application object, which logs and reads settings, is made before
// main(). From here on a run ends in order when it is told to.
void AnswerArguments(int argc, char** argv, const ProgramTexts& texts);

}  // namespace orvex::port
