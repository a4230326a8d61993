// What all tools' main() share: a standard output that cannot be written is an error.
#pragma once

#include <functional>
#include <string>

namespace orvex::tools {

// For a tool that has to know at once whether anybody gets what it says. After a failure nothing more is written.
class StandardOutput {
public:
  void Write(const std::string& text);
  bool HasFailed() const { return m_Error != 0; }
  // "standard output: cannot be written: No space left on device"; empty when nothing has failed.
  std::string Problem() const;

private:
  int m_Error = 0;  // errno
};

// Does `work`, which answers the exit code, and answers that. When standard output could not take everything, a line on
// stderr says so and the exit code is at least `failureCode`.
//
// Call it first in main(). A pipe that nobody reads no longer ends the program by a signal: writing to it fails. A
// standard stream that is closed stays unusable, also when `work` opens files.
int RunWithStandardOutput(const char* program, int failureCode, const std::function<int()>& work);

}  // namespace orvex::tools
