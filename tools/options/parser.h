// Splits a command line into its parts. The only place that knows the library which does that.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "options/command.h"

namespace orvex::tools {

// A word that has no meaning, after `command`.
struct SurplusWord {
  const Command* command;
  std::string word;
};

struct CommandLine {
  const Command* command = nullptr;                          // the innermost that is named
  std::map<const Option*, std::vector<std::string>> values;  // of the options that are given, "true" for a flag
  std::vector<SurplusWord> surplus;
  const Option* unfinished = nullptr;  // an option that takes a value and has none
  std::optional<std::string> answer;   // to --help or --version
};

// `words`: what follows the program's name.
CommandLine SplitCommandLine(const Command& program, const std::string& version, const std::vector<std::string>& words);

}  // namespace orvex::tools
