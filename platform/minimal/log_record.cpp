// The system log on stderr: "main I tag: record", buffer and priority first.
#include <unistd.h>

#include "linux/log_line.h"
#include "linux/port.h"
#include "linux/small_files.h"

bool orvex::port::WriteLogRecord(const LogRecord& record) {
  const bool endsItsLine = !record.text.empty() && record.text.back() == '\n';
  return WriteWhole(STDERR_FILENO, LogLineBeginning(record) + record.text + (endsItsLine ? "" : "\n"));
}
