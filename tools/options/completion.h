// What can stand at the end of a command line that a person is writing, for the completion of a shell.
#pragma once

#include <string>
#include <vector>

#include "options/command.h"

namespace orvex::tools {

// Asks a program for CompletionLines(); the words follow it. Not for people, so the help does not name it.
constexpr char kCompleteWords[] = "--complete-words";

// `words`: what follows the program's name up to the cursor; the last one, possibly empty, is to be completed. A line
// for each word that begins as that does, with its meaning after a tab. A line that is a tab and "files" or "folders"
// asks the shell to offer those.
std::string CompletionLines(const Command& program, const std::vector<std::string>& words);

}  // namespace orvex::tools
