// What the pieces ask of the virtual television. Its log is every record on stderr, and as one line with its time in
// service.log; problems go there too, under the port's tag.
#include "linux/port.h"

#include <unistd.h>

#include "linux/log_line.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "virtual/last_run.h"
#include "virtual/television.h"

namespace orvex::port {

void ReportProblem(const std::string& text) {
  system_log_print(LogBuffer::kSystem, LogPriority::kError, "orvex-host", "orvex-host: %s\n", text.c_str());
}

bool WriteLogRecord(const LogRecord& record) {
  // A broken stderr is no failure: nobody reads it any more.
  static_cast<void>(WriteWhole(STDERR_FILENO, record.text));
  virtual_tv::NoteForLastRun(record.text);
  const auto file = virtual_tv::Television::Instance().PathOf("service.log");
  return AppendLine(file, UtcNow() + " " + LogLine(record));
}

std::filesystem::path SettingsFolder() {
  return virtual_tv::Television::Instance().PathOf("settings");
}

}  // namespace orvex::port
