// The system log: formats a record, makes it fit for a terminal and hands it to the port.
#include "orvex/platform/system_log.h"

#include <signal.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "linux/no_destroy.h"
#include "linux/port.h"
#include "linux/printable_text.h"

namespace {

using orvex::port::Printable;

// Keeps the signal of a broken stderr from ending the process while an object of this class lives.
class PipeSignalGuard {
public:
  PipeSignalGuard() {
    sigset_t pending;
    sigpending(&pending);
    m_WasPending = sigismember(&pending, SIGPIPE) == 1;
    sigemptyset(&m_Pipe);
    sigaddset(&m_Pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &m_Pipe, &m_Before);
  }
  ~PipeSignalGuard() {
    const timespec now{};
    if (!m_WasPending) {
      sigtimedwait(&m_Pipe, nullptr, &now);  // ours, if there is one
    }
    pthread_sigmask(SIG_SETMASK, &m_Before, nullptr);
  }
  PipeSignalGuard(const PipeSignalGuard&) = delete;
  PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

private:
  sigset_t m_Pipe{};
  sigset_t m_Before{};
  bool m_WasPending = false;
};

std::optional<std::string> FormatRecord(const char* format, va_list arguments) {
  std::array<char, 512> shortText{};
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(shortText.data(), shortText.size(), format, arguments);
  std::string record;
  if (length >= 0) {
    record.resize(static_cast<std::size_t>(length));
    if (record.size() < shortText.size()) {
      record.assign(shortText.data(), record.size());
    } else {
      std::vsnprintf(record.data(), record.size() + 1, format, again);
    }
  }
  va_end(again);
  return length >= 0 ? std::optional<std::string>(record) : std::nullopt;
}

// A coloured line is "file: function(line) > ", a colour, the message, and this.
constexpr std::string_view kEndOfColour = "\033[0m\n";
constexpr std::size_t kColourLength = 5;

bool IsColour(std::string_view text) {
  return text.size() == kColourLength && text.substr(0, 3) == "\033[3" && text[3] >= '0' && text[3] <= '7' &&
         text[4] == 'm';
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Escapes what could command a terminal or begin a line of its own, but for one line break at the end.
std::string SafeMessage(std::string_view message) {
  const bool hasBreak = EndsWith(message, "\n");
  message.remove_suffix(hasBreak ? 1 : 0);
  return Printable(message) + (hasBreak ? "\n" : "");
}

// The same, and a coloured line keeps its colour.
std::string SafeRecord(std::string_view record) {
  constexpr std::string_view kEndOfPrefix = ") > ";
  const std::size_t prefix = record.find(kEndOfPrefix);
  const std::size_t colour = prefix == std::string_view::npos ? record.size() : prefix + kEndOfPrefix.size();
  if (!IsColour(record.substr(colour, kColourLength)) || !EndsWith(record, kEndOfColour)) {
    return SafeMessage(record);
  }
  const std::size_t begin = colour + kColourLength;
  const std::size_t length = record.size() - begin - kEndOfColour.size();
  return Printable(record.substr(0, colour)) + std::string(record.substr(colour, kColourLength)) +
         SafeMessage(record.substr(begin, length)) + std::string(kEndOfColour);
}

// One at a time, in one order. A closed pipe at stderr does not end the process.
bool WriteInTurn(const orvex::port::LogRecord& record) {
  static const orvex::port::NoDestroy<std::mutex> mutex;
  const std::lock_guard<std::mutex> lock(*mutex);
  const PipeSignalGuard guard;
  return orvex::port::WriteLogRecord(record);
}

}  // namespace

int system_log_print(LogBuffer buffer, LogPriority priority, const char* tag, const char* format, ...) {
  if (format == nullptr) {
    return -1;
  }
  va_list arguments;
  va_start(arguments, format);
  const int errnoBefore = errno;
  int result = -1;
  try {
    if (const auto record = FormatRecord(format, arguments)) {
      const bool isWritten = WriteInTurn({buffer, priority, Printable(tag == nullptr ? "" : tag), SafeRecord(*record)});
      result = isWritten ? static_cast<int>(record->size()) : -1;
    }
  } catch (const std::bad_alloc&) {
    result = -1;
  }
  errno = errnoBefore;
  va_end(arguments);
  return result;
}
