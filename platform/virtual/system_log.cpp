// The system log: every record on stderr, and as one line with time, buffer and priority in service.log.
#include "orvex/platform/system_log.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

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

#include "linux/printable_text.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "virtual/television.h"

namespace {

using orvex::port::IsRegularFile;
using orvex::port::Printable;
using orvex::port::UtcNow;
using orvex::virtual_tv::Television;

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

// One write; only what the kernel cut off is written in a further one.
bool WriteRecord(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) {
      return false;
    }
    done += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  return true;
}

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

char PriorityLetter(LogPriority priority) {
  constexpr std::array<char, 7> kLetters{'?', '?', '?', 'D', 'I', 'W', 'E'};
  const auto index = static_cast<std::size_t>(priority);
  return index < kLetters.size() ? kLetters[index] : '?';
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

// `record`: as SafeRecord() made it.
std::string FileLine(LogBuffer buffer, LogPriority priority, const std::string& tag, const std::string& record) {
  std::string line =
      UtcNow() + (buffer == LogBuffer::kSystem ? " system " : " main ") + PriorityLetter(priority) + " " + tag + ": ";
  const std::size_t length = record.size() - (!record.empty() && record.back() == '\n' ? 1 : 0);
  for (std::size_t index = 0; index < length; ++index) {
    if (record[index] == '\n') {
      line += "\\n";
    } else {
      line += record[index];
    }
  }
  return line + "\n";
}

// Opened for every record: the file may be moved away or removed at any time.
bool AppendToFile(const std::string& line) {
  const auto path = Television::Instance().PathOf("service.log");
  const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, 0600);
  const bool written = fd >= 0 && IsRegularFile(fd) && WriteRecord(fd, line);
  if (fd >= 0) {
    ::close(fd);
  }
  return written;
}

// Both places get the records in one order. Never destroyed: threads may log until the process is gone.
std::mutex& WriteMutex() {
  static auto& mutex = *new std::mutex;
  return mutex;
}

// A broken stderr is no failure: nobody reads it any more.
bool WriteBoth(const std::string& record, const std::string& line) {
  const std::lock_guard<std::mutex> lock(WriteMutex());
  const PipeSignalGuard guard;
  WriteRecord(STDERR_FILENO, record);
  return AppendToFile(line);
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
      const std::string safe = SafeRecord(*record);
      const std::string line = FileLine(buffer, priority, Printable(tag == nullptr ? "" : tag), safe);
      result = WriteBoth(safe, line) ? static_cast<int>(record->size()) : -1;
    }
  } catch (const std::bad_alloc&) {
    result = -1;
  }
  errno = errnoBefore;
  va_end(arguments);
  return result;
}
