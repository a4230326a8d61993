// Contract: the television's system log. The first thing to port: what goes wrong in the other services is seen here.
//
// A record of the service begins with its place, "file: function(line) > ", has a colour sequence of terminals around
// its text, and ends with a line break. A port takes it as it is, colours included.
#pragma once

// Log buffers. Values are the system's.
enum class LogBuffer : int {
  // What a service does. Milestones of a normal run are here too, at error level so that they are seen.
  kMain = 0,
  // What failed or was refused. The system keeps this buffer longer.
  kSystem = 2,
};

// Priorities, the least important first. Values are the system's.
enum class LogPriority : int {
  kDebug = 3,
  kInfo = 4,
  kWarning = 5,
  kError = 6,
};

// Writes one record, formatted as by printf.
//
// Thread: any, before main() and after AppMain() too, as long as the process runs. So what the function uses is made at
// its first call and never destroyed.
//
// The port MUST
// - keep the records of one thread in their order,
// - write a record whole: one lock and one write for all of it,
// - write a record of any length; a log that limits its records gets it in several pieces, in order.
// The port MUST NOT
// - mix two records,
// - keep `tag`, `format` or an argument after the return.
// It MAY block for the time of one write: the delivery thread of the remote's voice logs several records per block.
//
// Result: number of bytes of the formatted record, negative when it could not be written. The service ignores it.
int system_log_print(LogBuffer buffer, LogPriority priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
