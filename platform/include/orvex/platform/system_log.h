// Contract: the television's system log.
#pragma once

// Log buffers. Values are the system's.
enum class LogBuffer : int {
  kMain = 0,    // what a service does
  kSystem = 2,  // failures, kept longer by the system
};

// Priorities. Values are the system's.
enum class LogPriority : int {
  kDebug = 3,
  kInfo = 4,
  kWarning = 5,
  kError = 6,
};

// Writes one record, formatted as by printf.
//
// Thread: any, before main() and after AppMain() too. The port MUST keep the lines of one thread in their order, MUST
// NOT mix two records, MUST NOT cut one however long it is, and MUST NOT keep `tag`, `format` or an argument after the
// return. It MAY block for the time of one write.
//
// Result: number of bytes of the formatted record, negative when it could not be written. The service ignores it.
int system_log_print(LogBuffer buffer, LogPriority priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
