// What the pieces ask of this port. Its log is every record on stderr, which the service manager keeps.
#include "linux/port.h"

#include <unistd.h>

#include "linux/log_line.h"
#include "linux/small_files.h"
#include "pipewire/places.h"

namespace orvex::port {

void ReportProblem(const std::string& text) {
  system_log_print(LogBuffer::kSystem, LogPriority::kError, "orvex-pc", "%s\n", text.c_str());
}

bool WriteLogRecord(const LogRecord& record) {
  return WriteWhole(STDERR_FILENO, LogLine(record));
}

std::filesystem::path SettingsFolder() {
  return pipewire::SettingsPlace();
}

std::filesystem::path EventLogFile() {
  return pipewire::StatePlace() / "events.jsonl";
}

}  // namespace orvex::port
