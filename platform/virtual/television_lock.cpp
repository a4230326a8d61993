// An flock() on the television's directory.
#include "virtual/television_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace orvex::virtual_tv {

TelevisionLock::TelevisionLock(const std::filesystem::path& directory)
    : m_Fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      m_IsHeld(m_Fd < 0 || ::flock(m_Fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {}

TelevisionLock::~TelevisionLock() {
  if (m_Fd >= 0) {
    ::close(m_Fd);
  }
}

}  // namespace orvex::virtual_tv
