// An flock() on the folder.
#include "linux/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace orvex::port {

FolderLock::FolderLock(const std::filesystem::path& folder)
    : m_Fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      m_IsHeld(m_Fd < 0 || ::flock(m_Fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {}

FolderLock::~FolderLock() {
  if (m_Fd >= 0) {
    ::close(m_Fd);
  }
}

}  // namespace orvex::port
