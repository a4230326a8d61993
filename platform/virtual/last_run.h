// What the television's latest run came to: last_run.json in its directory.
#pragma once

#include <string>

namespace orvex::virtual_tv {

// A run begins: the file of the one before goes. Main loop's thread, once.
void BeginLastRun();

// Looks at a record of the system log. The service puts each end record there, whether or not the user has agreed to
// telemetry; the file is then written, so the last one of a run stands. Any thread. A file that cannot be written is
// left out.
void NoteForLastRun(const std::string& logText);

}  // namespace orvex::virtual_tv
