// A word for the buffer, a letter for the priority.
#include "linux/log_line.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "linux/small_files.h"

namespace orvex::port {
namespace {

char PriorityLetter(LogPriority priority) {
  constexpr std::array<char, 7> kLetters{'?', '?', '?', 'D', 'I', 'W', 'E'};
  const auto index = static_cast<std::size_t>(priority);
  return index < kLetters.size() ? kLetters[index] : '?';
}

}  // namespace

std::string LogLineBeginning(const LogRecord& record) {
  return std::string(record.buffer == LogBuffer::kSystem ? "system " : "main ") + PriorityLetter(record.priority) +
         " " + record.tag + ": ";
}

std::string LogLine(const LogRecord& record) {
  std::string line = LogLineBeginning(record);
  const std::string& text = record.text;
  const std::size_t length = text.size() - (!text.empty() && text.back() == '\n' ? 1 : 0);
  for (std::size_t index = 0; index < length; ++index) {
    if (text[index] == '\n') {
      line += "\\n";
    } else {
      line += text[index];
    }
  }
  return line + "\n";
}

bool AppendLine(const std::filesystem::path& file, const std::string& line) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, 0600);
  const bool isWritten = fd >= 0 && IsRegularFile(fd) && WriteWhole(fd, line);
  if (fd >= 0) {
    ::close(fd);
  }
  return isWritten;
}

}  // namespace orvex::port
