// Compares a file with what was known of it.
#include "linux/key_state.h"

#include <system_error>

#include "linux/small_files.h"

namespace orvex::port {

bool KeyState::Snapshot::operator==(const Snapshot& other) const {
  return exists == other.exists && inode == other.inode && modified.tv_sec == other.modified.tv_sec &&
         modified.tv_nsec == other.modified.tv_nsec && content == other.content;
}

KeyState::KeyState(std::filesystem::path file) : m_File(std::move(file)), m_Known(Look()) {}

bool KeyState::TakeChange() {
  Snapshot now = Look();
  // Empty: its writer has only opened it yet; the closing follows.
  if (!now.exists || now.content.empty() || now == m_Known) {
    return false;
  }
  m_Known = std::move(now);
  m_AwaitsClosing = true;
  return true;
}

bool KeyState::TakeClosing() {
  Snapshot now = Look();
  const bool hasCounted = m_AwaitsClosing && now == m_Known;
  m_AwaitsClosing = false;
  m_Known = std::move(now);
  return m_Known.exists && !hasCounted;
}

KeyState::Snapshot KeyState::Look() const {
  constexpr std::size_t kComparedBytes = 4096;
  Snapshot snapshot;
  struct stat status {};
  if (::stat(m_File.c_str(), &status) != 0) {
    return snapshot;
  }
  snapshot.exists = true;
  snapshot.inode = status.st_ino;
  snapshot.modified = status.st_mtim;
  try {
    snapshot.content = ReadSmallFile(m_File, kComparedBytes);
  } catch (const std::system_error&) {
    snapshot.content.clear();  // cannot be read now; whoever reads the key will say so
  }
  return snapshot;
}

}  // namespace orvex::port
