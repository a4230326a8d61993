// Errors of the commands, told apart by the exit code that they lead to.
#pragma once

#include <stdexcept>

namespace orvex::tools {

constexpr int kExitGood = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
constexpr int kExitSignal = 128;  // plus the number of the signal

// Wrong usage or bad input: exit code 2.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// Right usage, but it could not be done: exit code 1.
class CommandError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvex::tools
