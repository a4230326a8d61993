#include "output/input_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "options/errors.h"

namespace orvex::tools {
namespace {

bool WriteAll(int fd, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = ::write(fd, bytes, count);
    if (written < 0) {
      return false;
    }
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

bool CopyStandardInput(int fd) {
  std::array<char, 65536> piece{};
  ssize_t count = 0;
  while ((count = ::read(STDIN_FILENO, piece.data(), piece.size())) > 0) {
    if (!WriteAll(fd, piece.data(), static_cast<std::size_t>(count))) {
      return false;
    }
  }
  return count == 0;
}

}  // namespace

InputFile::InputFile(std::string name) : m_Name(std::move(name)), m_Path(m_Name) {
  if (m_Name != "-") {
    return;
  }
  m_Fd = ::memfd_create("standard input", MFD_CLOEXEC);
  if (m_Fd < 0 || !CopyStandardInput(m_Fd)) {
    const std::string reason = std::strerror(errno);
    ::close(m_Fd);
    throw UsageError("-: standard input cannot be read: " + reason);
  }
  m_Path = "/proc/self/fd/" + std::to_string(m_Fd);
}

InputFile::~InputFile() {
  if (m_Fd >= 0) {
    ::close(m_Fd);
  }
}

std::string InputFile::Named(std::string message) const {
  const std::size_t place = message.find(m_Path);
  return place == std::string::npos ? message : message.replace(place, m_Path.size(), m_Name);
}

}  // namespace orvex::tools
