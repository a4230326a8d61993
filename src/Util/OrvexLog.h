// The service's log lines: one macro per kind of line.
//
// Every line goes to the system log under one tag, as source file, function and line, then the message in the colour of
// its priority. Formats are literals and are checked by the compiler. Any thread.
#pragma once

#include "orvex/platform/system_log.h"

#define ORVEX_LOG_LINE(buffer, priority, colour, format, ...)                                              \
  static_cast<void>(system_log_print(buffer, priority, "Orvex", "%s: %s(%d) > " colour format "\033[0m\n", \
                                     __FILE_NAME__, static_cast<const char*>(__func__), __LINE__, ##__VA_ARGS__))

// What the service does.
#define ORVEX_DEBUG(format, ...) \
  ORVEX_LOG_LINE(LogBuffer::kMain, LogPriority::kDebug, "\033[37m", format, ##__VA_ARGS__)
#define ORVEX_INFO(format, ...) ORVEX_LOG_LINE(LogBuffer::kMain, LogPriority::kInfo, "\033[32m", format, ##__VA_ARGS__)
#define ORVEX_WARNING(format, ...) \
  ORVEX_LOG_LINE(LogBuffer::kMain, LogPriority::kWarning, "\033[33m", format, ##__VA_ARGS__)

// A milestone or diagnostic of a run that goes well, at error level so that it is seen on televisions which log errors
// only.
#define ORVEX_MILESTONE(format, ...) \
  ORVEX_LOG_LINE(LogBuffer::kMain, LogPriority::kError, "\033[31m", format, ##__VA_ARGS__)

// Something failed or was refused; kept in the system buffer.
#define ORVEX_FAILURE(format, ...) \
  ORVEX_LOG_LINE(LogBuffer::kSystem, LogPriority::kError, "\033[31m", format, ##__VA_ARGS__)

// True when `pointer` is null, which is logged under the caller's own name.
#define ORVEX_IS_NULL(pointer) \
  ((pointer) == nullptr && (ORVEX_FAILURE("pThis is null"), ORVEX_FAILURE("Assertion failed"), true))
