// What the pieces ask of this port. The system log goes to stderr: "main I tag: record", buffer and priority first.
#include "linux/port.h"

#include <unistd.h>

#include <cstdio>

#include "linux/log_line.h"
#include "linux/small_files.h"

namespace orvex::port {

void ReportProblem(const std::string& text) {
  std::fprintf(stderr, "orvex-minimal: %s\n", text.c_str());
}

bool WriteLogRecord(const LogRecord& record) {
  const bool endsItsLine = !record.text.empty() && record.text.back() == '\n';
  return WriteWhole(STDERR_FILENO, LogLineBeginning(record) + record.text + (endsItsLine ? "" : "\n"));
}

}  // namespace orvex::port
