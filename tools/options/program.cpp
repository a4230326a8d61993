// Reads the command line, runs the command, and turns exceptions into messages and exit codes.
#include "options/program.h"

#include <cstdio>

#include "options/completion.h"
#include "options/parser.h"
#include "options/usage_check.h"
#include "options/version.h"
#include "output/standard_output.h"

namespace orvex::tools {

Program::Program(const std::string& name, const std::string& text, const std::string& exitCodes, int failureCode)
    : Command(name, text + "\nExit code: " + exitCodes + "."), m_FailureCode(failureCode) {
  AddOption("--version", "print the version and exit", Option::Use::kVersion);
}

int Program::Run(int argc, const char* const* argv) const {
  return RunWithStandardOutput(GetName().c_str(), m_FailureCode, [&] {
    try {
      return RunCommand(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& problem) {
      std::fprintf(stderr, "%s: %s\n", GetName().c_str(), problem.what());
      const bool isUsage = dynamic_cast<const UsageError*>(&problem) != nullptr || m_IsUsage(problem);
      return isUsage ? kExitUsage : m_FailureCode;
    }
  });
}

const Command* Program::Read(const std::vector<std::string>& words) const {
  const CommandLine line = SplitCommandLine(*this, GetName() + " " + Version(), words);
  if (line.answer) {
    std::fputs(line.answer->c_str(), stdout);
    return nullptr;
  }
  CheckUsage(line);
  for (const auto& [option, values] : line.values) {
    for (const std::string& value : values) {
      option->store(value);
    }
  }
  return line.command;
}

int Program::RunCommand(const std::vector<std::string>& words) const {
  if (!words.empty() && words.front() == kCompleteWords) {
    std::fputs(CompletionLines(*this, {words.begin() + 1, words.end()}).c_str(), stdout);
    return kExitGood;
  }
  const Command* const command = Read(words);
  return command == nullptr ? kExitGood : command->RunAction();
}

}  // namespace orvex::tools
