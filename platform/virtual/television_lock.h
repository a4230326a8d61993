// One service at a time on a virtual television.
#pragma once

#include <filesystem>

namespace orvex::virtual_tv {

// Holds a television's directory as long as it lives and its process does: the lock is the system's and goes with it.
class TelevisionLock {
public:
  explicit TelevisionLock(const std::filesystem::path& directory);
  ~TelevisionLock();
  TelevisionLock(const TelevisionLock&) = delete;
  TelevisionLock& operator=(const TelevisionLock&) = delete;

  // False: another process holds it. A file system that knows no locks refuses nobody.
  bool IsHeld() const { return m_IsHeld; }

private:
  int m_Fd;
  bool m_IsHeld;
};

}  // namespace orvex::virtual_tv
