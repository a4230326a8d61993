// A whole program of the command line: its options, its messages and its exit codes.
#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "options/command.h"
#include "options/errors.h"

namespace orvex::tools {

class Program : public Command {
public:
  // `exitCodes`: for the help, "0 done, 1 it could not be done, 2 wrong usage". `failureCode`: the code of every
  // failure that is no wrong usage, and of a standard output that cannot be written.
  Program(const std::string& name, const std::string& text, const std::string& exitCodes, int failureCode);

  // Errors that are the person's, beside UsageError: they lead to kExitUsage.
  void SetUsageErrors(std::function<bool(const std::exception&)> isUsage) { m_IsUsage = std::move(isUsage); }

  // Does what the arguments of main() say, and answers the exit code. What goes wrong is said on standard error, after
  // the program's name. Call it before anything that opens files.
  int Run(int argc, const char* const* argv) const;

  // Fills the variables of the options from `words`, which follow the program's name, and answers the command that is
  // called; null: the answer to --help or --version has been printed. Throws UsageError.
  const Command* Read(const std::vector<std::string>& words) const;

private:
  int RunCommand(const std::vector<std::string>& words) const;

  const int m_FailureCode;
  std::function<bool(const std::exception&)> m_IsUsage = [](const std::exception&) { return false; };
};

}  // namespace orvex::tools
