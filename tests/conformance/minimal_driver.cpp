// The driver of the smallest port: the television is this process, its log is what goes to stderr.
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <sstream>
#include <stdexcept>

#include "conformance/pieces_driver.h"

namespace orvex::conformance {
namespace {

// Leads stderr into a file without a name as long as it lives.
class CapturedErrors {
public:
  CapturedErrors() {
    if (m_File < 0 || m_Before < 0 || ::dup2(m_File, STDERR_FILENO) < 0) {
      throw std::runtime_error(std::string("cannot lead stderr into a file: ") + std::strerror(errno));
    }
  }
  ~CapturedErrors() {
    ::dup2(m_Before, STDERR_FILENO);
    ::close(m_Before);
    ::close(m_File);
  }
  CapturedErrors(const CapturedErrors&) = delete;
  CapturedErrors& operator=(const CapturedErrors&) = delete;

  std::string Text() const {
    std::string text;
    char piece[65536];
    for (ssize_t count = 0; (count = ::pread(m_File, piece, sizeof piece, static_cast<off_t>(text.size()))) > 0;) {
      text.append(piece, static_cast<std::size_t>(count));
    }
    return text;
  }

private:
  int m_File = ::memfd_create("stderr", MFD_CLOEXEC);
  int m_Before = ::dup(STDERR_FILENO);
};

class MinimalDriver : public PiecesDriver {
public:
  MinimalDriver() : PiecesDriver({Ability::kReadLog, Ability::kSendTerminationSignal}) {}

  // "main I tag: text"; what libraries write to stderr is no record.
  std::vector<LogRecord> LogRecords() const override {
    std::istringstream lines(m_Errors.Text());
    std::vector<LogRecord> records;
    for (std::string line; std::getline(lines, line);) {
      if (const auto record = ParseLogRecord(line)) {
        records.push_back(*record);
      }
    }
    return records;
  }

private:
  CapturedErrors m_Errors;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<MinimalDriver>();
}

}  // namespace orvex::conformance
