// One service at a time on a virtual television.
#pragma once

#include <filesystem>

namespace orvex::virtual_tv {

// Holds the lock on a television's directory during its life. The system releases the lock when the process ends.
class TelevisionLock {
public:
  explicit TelevisionLock(const std::filesystem::path& directory);
  ~TelevisionLock();
  TelevisionLock(const TelevisionLock&) = delete;
  TelevisionLock& operator=(const TelevisionLock&) = delete;

  // False: another process holds it. True on a file system that has no locks.
  bool IsHeld() const { return m_IsHeld; }

private:
  int m_Fd;
  bool m_IsHeld;
};

}  // namespace orvex::virtual_tv
