// One settings key's file: tells new writes from known ones. No main loop, no thread of its own.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace orvex::port {

// A writer that opens the file itself, such as echo, shows as a creation (of a new file) and as a closing; one that
// renames shows as a creation only. One write counts once: at its creation when the content is there by then, else at
// its closing. Two writes of one value within one tick of the file system's clock may count as one.
class KeyState {
public:
  explicit KeyState(std::filesystem::path file);

  const std::filesystem::path& GetFile() const { return m_File; }

  // The file may have been written since it was looked at last. True: it was.
  bool TakeChange();
  // A writer has closed the file. True: a write that does not count yet.
  bool TakeClosing();

private:
  // Equal snapshots mean that nothing was written, as far as a file system can tell.
  struct Snapshot {
    bool exists = false;
    ino_t inode = 0;
    timespec modified{};
    std::string content;
    bool operator==(const Snapshot& other) const;
  };

  Snapshot Look() const;

  std::filesystem::path m_File;
  Snapshot m_Known;
  bool m_AwaitsClosing = false;  // the write of m_Known has counted, its closing may be still to come
};

}  // namespace orvex::port
