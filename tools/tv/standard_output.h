// Standard output of a command that has to know whether somebody gets what it says.
#pragma once

#include <string>

namespace orvex::tools {

// Written at once. After a failure nothing more is written.
class StandardOutput {
public:
  void Write(const std::string& text);
  bool HasFailed() const { return m_Error != 0; }
  // "standard output cannot be written: No space left on device"; empty when nothing has failed.
  std::string Problem() const;

private:
  int m_Error = 0;  // errno
};

}  // namespace orvex::tools
