// The system log of the virtual television: every record on stderr, and as one line with its time in service.log.
#include <unistd.h>

#include "linux/log_line.h"
#include "linux/port.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "virtual/television.h"

bool orvex::port::WriteLogRecord(const LogRecord& record) {
  // A broken stderr is no failure: nobody reads it any more.
  static_cast<void>(WriteWhole(STDERR_FILENO, record.text));
  const auto file = virtual_tv::Television::Instance().PathOf("service.log");
  return AppendLine(file, UtcNow() + " " + LogLine(record));
}
