// What a program that is to be started takes: its arguments and its environment.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools {

// This process's environment, but for the variables that begin with one of `prefixes`.
std::vector<std::string> EnvironmentWithout(const std::vector<std::string>& prefixes);

// The texts as exec and posix_spawn take them, with null at the end. They point into `texts`.
std::vector<char*> NullTerminated(std::vector<std::string>& texts);

}  // namespace orvex::tools
