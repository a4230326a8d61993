// Owns a file descriptor.
#pragma once

#include <unistd.h>

namespace orvex::tools {

class FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : m_Fd(fd) {}
  ~FileDescriptor() { Reset(); }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int Get() const { return m_Fd; }
  void Reset(int fd = -1) {
    if (m_Fd >= 0) {
      ::close(m_Fd);
    }
    m_Fd = fd;
  }

private:
  int m_Fd = -1;
};

}  // namespace orvex::tools
