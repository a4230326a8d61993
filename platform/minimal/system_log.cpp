// The system log on stderr: "main I tag: record", buffer and priority first.
#include "orvex/platform/system_log.h"

#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace {

struct FreeDeleter {
  void operator()(char* text) const { std::free(text); }
};
using Text = std::unique_ptr<char, FreeDeleter>;

char Letter(LogPriority priority) {
  switch (priority) {
    case LogPriority::kDebug:
      return 'D';
    case LogPriority::kInfo:
      return 'I';
    case LogPriority::kWarning:
      return 'W';
    case LogPriority::kError:
      return 'E';
  }
  return '?';
}

// One write, but for what the kernel cuts off.
bool Write(const char* text, std::size_t length) {
  // Never destroyed: threads may log until the process is gone.
  static auto& mutex = *new std::mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  while (length > 0) {
    const ssize_t count = ::write(STDERR_FILENO, text, length);
    if (count < 0 && errno != EINTR) {
      return false;
    }
    const std::size_t done = count < 0 ? 0 : static_cast<std::size_t>(count);
    text += done;
    length -= done;
  }
  return true;
}

}  // namespace

int system_log_print(LogBuffer buffer, LogPriority priority, const char* tag, const char* format, ...) {
  char* memory = nullptr;
  va_list arguments;
  va_start(arguments, format);
  const int recordLength = ::vasprintf(&memory, format, arguments);
  va_end(arguments);
  if (recordLength < 0) {
    return -1;
  }
  const Text record(memory);
  const bool endsItsLine = recordLength > 0 && record.get()[recordLength - 1] == '\n';
  const int lineLength = ::asprintf(&memory, "%s %c %s: %s%s", buffer == LogBuffer::kSystem ? "system" : "main",
                                    Letter(priority), tag, record.get(), endsItsLine ? "" : "\n");
  if (lineLength < 0) {
    return -1;
  }
  const Text line(memory);
  return Write(line.get(), static_cast<std::size_t>(lineLength)) ? recordLength : -1;
}
