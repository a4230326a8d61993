// Locks the file against other processes, repairs its end and appends a line.
#include "linux/event_file.h"

#include <fcntl.h>
#include <json/json.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

#include "linux/json_text.h"
#include "linux/port.h"
#include "linux/printable_text.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "orvex/platform/event_log.h"

namespace orvex::port {
namespace {

// The end of the file is looked at in steps of this length; our own lines are far shorter.
constexpr off_t kTailStepBytes = 4096;

// The opened collection, locked against other processes until it is closed.
class RecordFile {
public:
  explicit RecordFile(const std::string& path)
      : m_Path(path),
        m_Fd(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, 0600)) {}
  ~RecordFile() {
    if (m_Fd >= 0) {
      ::close(m_Fd);
    }
  }
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  // False: errno tells why.
  bool Open() {
    struct stat state {};
    if (m_Fd < 0 || !IsRegularFile(m_Fd) || ::flock(m_Fd, LOCK_EX) != 0 || ::fstat(m_Fd, &state) != 0) {
      return false;
    }
    m_Size = state.st_size;
    return true;
  }

  // Appends one line whole, or nothing. False: errno tells why.
  bool Append(std::string line) {
    if (!RepairEnd(&line)) {
      return false;
    }
    const ssize_t count = ::write(m_Fd, line.data(), line.size());
    if (count == static_cast<ssize_t>(line.size())) {
      return true;
    }
    const int reason = count < 0 ? errno : ENOSPC;
    const int cut = count > 0 ? ::ftruncate(m_Fd, m_Size) : 0;
    errno = cut == 0 ? reason : EIO;
    return false;
  }

private:
  // A writer that was killed leaves a cut line: it was never accepted and goes. A whole record that only lacks its line
  // break, as an editor leaves it, is kept.
  bool RepairEnd(std::string* line) {
    const std::string tail = Tail();
    if (tail.empty()) {
      return true;
    }
    Json::Value record;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    bool whole = false;
    try {
      whole = reader->parse(tail.data(), tail.data() + tail.size(), &record, nullptr) && record.isObject();
    } catch (const Json::Exception&) {
      whole = false;  // nested too deeply: none of ours
    }
    if (whole) {
      line->insert(0, "\n");
      return true;
    }
    m_Size -= static_cast<off_t>(tail.size());
    ReportProblem(m_Path + ": removed a last line that was cut off, " + std::to_string(tail.size()) + " bytes");
    return ::ftruncate(m_Fd, m_Size) == 0;
  }

  // What stands behind the last line break.
  std::string Tail() const {
    std::string text;
    off_t begin = m_Size;
    while (begin > 0 && text.find('\n') == std::string::npos) {
      const off_t end = begin;
      begin = std::max<off_t>(0, end - kTailStepBytes);
      std::string step(static_cast<std::size_t>(end - begin), '\0');
      const ssize_t count = ::pread(m_Fd, step.data(), step.size(), begin);
      text.insert(0, step, 0, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    const std::size_t lastBreak = text.rfind('\n');
    return lastBreak == std::string::npos ? text : text.substr(lastBreak + 1);
  }

  std::string m_Path;
  int m_Fd;
  off_t m_Size = 0;
};

std::string RecordLine(const std::string& service, const std::string& event, const std::string& category,
                       const std::string& value) {
  Json::Value record;
  record["time"] = UtcNow();
  record["service"] = ValidUtf8(service);
  record["event"] = ValidUtf8(event);
  record["category"] = ValidUtf8(category);
  record["value"] = ValidUtf8(value);
  return CompactJson(record) + "\n";
}

}  // namespace

int AppendEventRecord(const std::filesystem::path& path, const std::string& service, const std::string& event,
                      const std::string& category, const std::string& value) {
  RecordFile file(path);
  const bool isOpen = file.Open();
  if (isOpen && file.Append(RecordLine(service, event, category, value))) {
    return kEventLogAccepted;
  }
  ReportProblem("cannot write " + path.string() + ": " + std::strerror(errno));
  return isOpen ? kEventLogRefused : kEventLogUnreachable;
}

}  // namespace orvex::port
