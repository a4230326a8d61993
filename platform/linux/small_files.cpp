// Whole files by write-then-rename.
#include "linux/small_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace orvex::port {
namespace {

[[noreturn]] void ThrowErrno() {
  throw std::system_error(errno, std::generic_category());
}

class FileDescriptor {
public:
  explicit FileDescriptor(int fd) : m_Fd(fd) {
    if (m_Fd < 0) {
      ThrowErrno();
    }
  }
  ~FileDescriptor() { ::close(m_Fd); }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int Get() const { return m_Fd; }

private:
  int m_Fd;
};

// The finished file under its temporary name; removed again unless it was moved away.
class TemporaryFile {
public:
  TemporaryFile(const std::filesystem::path& path, const std::string& content) : m_Name(TemporaryName(path)) {
    const FileDescriptor file(::open(m_Name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!WriteWhole(file.Get(), content)) {
      const int reason = errno;
      ::unlink(m_Name.c_str());
      errno = reason;
      ThrowErrno();
    }
  }
  ~TemporaryFile() { ::unlink(m_Name.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const char* GetName() const { return m_Name.c_str(); }

private:
  std::filesystem::path m_Name;
};

}  // namespace

bool IsPlainPath(const std::string& path) {
  std::size_t begin = 0;
  while (begin <= path.size()) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    // Neither "//" nor "..", nor the hidden files that a write leaves for a moment.
    if (end == begin || path[begin] == '.') {
      return false;
    }
    begin = end + 1;
  }
  return path.find('\0') == std::string::npos;
}

bool IsRegularFile(int fd) {
  struct stat state {};
  if (::fstat(fd, &state) != 0) {
    return false;
  }
  errno = EINVAL;
  return S_ISREG(state.st_mode);
}

bool WriteWhole(int fd, const std::string& text) {
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

std::filesystem::path TemporaryName(const std::filesystem::path& path) {
  static std::atomic<unsigned> counter{0};
  return path.parent_path() / ("." + path.filename().string() + "." + std::to_string(::getpid()) + "." +
                               std::to_string(counter.fetch_add(1)));
}

std::string ReadSmallFile(const std::filesystem::path& path, std::size_t maximumBytes) {
  // Not blocking: a pipe that someone put there must not stop the caller.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  std::string content;
  std::array<char, 4096> chunk{};
  while (content.size() <= maximumBytes) {
    const std::size_t wanted = std::min(chunk.size(), maximumBytes + 1 - content.size());
    const ssize_t count = ::read(file.Get(), chunk.data(), wanted);
    if (count == 0) {
      break;
    }
    if (count < 0 && errno != EINTR) {
      ThrowErrno();
    }
    content.append(chunk.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  return content;
}

void ReplaceFile(const std::filesystem::path& path, const std::string& content) {
  const TemporaryFile file(path, content);
  if (::rename(file.GetName(), path.c_str()) != 0) {
    ThrowErrno();
  }
}

bool CreateFileOnce(const std::filesystem::path& path, const std::string& content) {
  const TemporaryFile file(path, content);
  // A second name instead of a rename: it fails when somebody else was faster.
  if (::link(file.GetName(), path.c_str()) == 0) {
    return true;
  }
  if (errno != EEXIST) {
    ThrowErrno();
  }
  return false;
}

}  // namespace orvex::port
