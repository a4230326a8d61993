// What a port tells the pieces that it is built from. The port defines each function of a piece that it takes; the
// linker names the ones that are missing.
#pragma once

#include <filesystem>
#include <string>

#include "orvex/platform/system_log.h"

namespace orvex::port {

// Every piece. Tells the user of a problem that he can mend: a bad file, a missing directory. `text` is one line
// without its line break. Any thread, before main() too.
void ReportProblem(const std::string& text);

// A record of the system log, fit for a terminal: control characters and bytes that are no UTF-8 are escaped, but for a
// line break at the end and the colour of a coloured line.
struct LogRecord {
  LogBuffer buffer;
  LogPriority priority;
  std::string tag;
  std::string text;
};
// system_log.cpp. Writes one record; log_line.h helps. Any thread, before main() and after AppMain() too, one call at a
// time. False: it could not be written.
bool WriteLogRecord(const LogRecord& record);

// settings_files.cpp. The folder of the settings' files, an absolute path: the key "db/menu/name" is the file
// db/menu/name in it. Any thread, before main() too, always the same.
std::filesystem::path SettingsFolder();

// event_log.cpp. The file of the event log, an absolute path. Main loop only.
std::filesystem::path EventLogFile();

}  // namespace orvex::port
