// Unknown words come first: most other mistakes follow from them.
#include "options/usage_check.h"

#include "options/errors.h"
#include "options/suggestion.h"

namespace orvex::tools {
namespace {

std::string Quoted(const std::string& word) {
  return "\"" + word + "\"";
}

[[noreturn]] void Refuse(const Command& command, const std::string& problem) {
  throw UsageError(problem + "\nRun \"" + command.GetPath() + " --help\" for more information.");
}

std::vector<std::string> CommandNames(const Command& command) {
  std::vector<std::string> names;
  for (const Command& inner : command.GetCommands()) {
    names.push_back(inner.GetName());
  }
  return names;
}

std::vector<std::string> OptionNames(const Command& command) {
  std::vector<std::string> names;
  for (const Option& option : command.GetOptions()) {
    for (const std::string& name : option.Names()) {
      if (name.front() == '-') {
        names.push_back(name);
      }
    }
  }
  return names;
}

// "run, get or set"
std::string Listed(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() ? "" : &word == &words.back() ? " or " : ", ") + word;
  }
  return text;
}

void CheckSurplus(const SurplusWord& surplus) {
  const Command& command = *surplus.command;
  if (surplus.word.size() > 1 && surplus.word.front() == '-') {
    const std::string name = surplus.word.substr(0, surplus.word.find('='));
    Refuse(command, "unknown option " + Quoted(name) + DidYouMean(name, OptionNames(command)));
  }
  if (!command.GetCommands().empty()) {
    const std::string near = DidYouMean(surplus.word, CommandNames(command));
    Refuse(command, "unknown command " + Quoted(surplus.word) +
                        (near.empty() ? ", expected " + Listed(CommandNames(command)) : near));
  }
  Refuse(command, "unexpected argument " + Quoted(surplus.word));
}

void CheckValues(const Command& command, const Option& option, const std::vector<std::string>& values) {
  if (option.use == Option::Use::kFlag && values.back() != "true") {
    Refuse(command, option.Name() + ": " + Quoted(values.back()) + ": expected no value");
  }
  if (option.TakesValue() && !option.isRepeated && values.size() > 1) {
    Refuse(command, option.Name() + " is given " + std::to_string(values.size()) + " times, expected once");
  }
  for (const std::string& value : values) {
    if (option.TakesValue() && value.rfind("--", 0) == 0 && command.FindOption(value) != nullptr) {
      Refuse(command, option.Name() + ": expected " + option.kind.expected + " after it, not " + value);
    }
    if (option.TakesValue() && !option.kind.accepts(value)) {
      Refuse(command, option.Name() + ": " + Quoted(value) + ": expected " + option.kind.expected +
                          DidYouMean(value, option.kind.words));
    }
  }
}

void CheckCompany(const CommandLine& line, const Option& option) {
  for (const Option* const other : option.excluded) {
    if (line.values.count(other) > 0) {
      Refuse(*line.command, option.Name() + " cannot be combined with " + other->Name());
    }
  }
  if (option.needed != nullptr && line.values.count(option.needed) == 0) {
    Refuse(*line.command, option.Name() + " needs " + option.needed->Name() + " beside it");
  }
}

}  // namespace

void CheckUsage(const CommandLine& line) {
  for (const SurplusWord& surplus : line.surplus) {
    CheckSurplus(surplus);
  }
  const Command& command = *line.command;
  if (!command.GetCommands().empty()) {
    Refuse(command, "a command is missing, expected " + Listed(CommandNames(command)));
  }
  if (line.unfinished != nullptr) {
    Refuse(command, line.unfinished->Name() + ": expected " + line.unfinished->kind.expected + " after it");
  }
  for (const Option& option : command.GetOptions()) {
    const auto given = line.values.find(&option);
    if (given != line.values.end()) {
      CheckValues(command, option, given->second);
      CheckCompany(line, option);
    } else if (option.isRequired) {
      Refuse(command, option.Name() + " is missing");
    }
  }
}

}  // namespace orvex::tools
