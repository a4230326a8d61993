// The commands as processes.
#pragma once

#include <string>
#include <vector>

#include <json/value.h>

#include "integration/process.h"

namespace orvex::integration {

struct ToolRun {
  ProcessEnding ending;
  std::string output;  // stdout
  std::string errors;  // stderr

  // The output as one JSON value; null when it is none, or when anything stands beside it.
  Json::Value Json() const;
};

// Runs a program to its end.
ToolRun RunProgram(const std::string& program, const std::vector<std::string>& arguments);

// Runs orvex-tv.
ToolRun RunTool(const std::vector<std::string>& arguments);

}  // namespace orvex::integration
