// Runs the service as a process of its own and hands its lines over.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "run/run_signals.h"

namespace orvex::tools {

struct ServiceCommand {
  std::filesystem::path program;
  std::vector<std::string> variables = {};  // "NAME=value" each: its environment is this process's own but for them
  std::vector<std::string> arguments = {};
  std::chrono::milliseconds limit{30000};
};

struct ServiceEnding {
  std::string startError;       // not empty: it did not start, and why
  std::optional<int> exitCode;  // 128 + signal number when a signal ended it; empty when it did not start
  bool limitReached = false;    // it was killed because it did not end
  std::chrono::milliseconds duration{0};

  // "ended by signal 11 (Segmentation fault)" and the like; empty when it ended with exit code 0.
  std::string Problem() const;
};

// `given`, else what ORVEX_SERVICE names, else the program of this name beside this one.
std::filesystem::path FindService(const std::string& given, const char* name);

// False: the service is to end. Lines come until it has.
using LineReceiver = std::function<bool(const std::string& line)>;

// Starts the service and returns when it has ended. Its stdout and stderr come line by line. A signal that asks this
// process to end ends the service in order, or keeps it from being started; it is killed when this process dies.
ServiceEnding RunService(const ServiceCommand& command, RunSignals& signals, const LineReceiver& onLine);

}  // namespace orvex::tools
