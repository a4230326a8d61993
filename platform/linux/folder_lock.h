// One service at a time on one television.
#pragma once

#include <filesystem>

namespace orvex::port {

// Holds the lock on a folder during its life. The system releases the lock when the process ends.
class FolderLock {
public:
  explicit FolderLock(const std::filesystem::path& folder);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  // False: another process holds it. True on a file system that has no locks.
  bool IsHeld() const { return m_IsHeld; }

private:
  int m_Fd;
  bool m_IsHeld;
};

}  // namespace orvex::port
