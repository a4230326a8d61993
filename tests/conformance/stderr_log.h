// The system log of a port that writes its records to stderr.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "conformance/port_driver.h"

namespace orvex::conformance {

// Leads stderr into a file without a name as long as it lives.
class StderrLog {
public:
  StderrLog() {
    if (m_File < 0 || m_Before < 0 || ::dup2(m_File, STDERR_FILENO) < 0) {
      throw std::runtime_error(std::string("cannot lead stderr into a file: ") + std::strerror(errno));
    }
  }
  ~StderrLog() {
    ::dup2(m_Before, STDERR_FILENO);
    ::close(m_Before);
    ::close(m_File);
  }
  StderrLog(const StderrLog&) = delete;
  StderrLog& operator=(const StderrLog&) = delete;

  // "main I tag: text"; what libraries write to stderr is no record.
  std::vector<LogRecord> Records() const {
    std::istringstream lines(Text());
    std::vector<LogRecord> records;
    for (std::string line; std::getline(lines, line);) {
      if (const auto record = ParseLogRecord(line)) {
        records.push_back(*record);
      }
    }
    return records;
  }

private:
  std::string Text() const {
    std::string text;
    char piece[65536];
    for (ssize_t count = 0; (count = ::pread(m_File, piece, sizeof piece, static_cast<off_t>(text.size()))) > 0;) {
      text.append(piece, static_cast<std::size_t>(count));
    }
    return text;
  }

  int m_File = ::memfd_create("stderr", MFD_CLOEXEC);
  int m_Before = ::dup(STDERR_FILENO);
};

}  // namespace orvex::conformance
