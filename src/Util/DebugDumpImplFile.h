// Debug dump into two files of /tmp per recording: the raw audio and the results.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <string>

#include "Util/IDebugDumpImpl.h"

// Files of recording n (1, 2, …) of process pid:
//   /tmp/audio_dump_<pid>_<n>        every delivered block as it came: signed 16-bit little-endian mono, no header
//
//   /tmp/audio_result_<pid>_<n>.csv  lines of text: the results and the delays in force
//
// They are never deleted here. Both have mode 0600. A file of this user that has one of the names is written anew;
// anything else there (a link, a pipe, a device, another user's file, a file with a second name) is a failure to open.
class CDebugDumpImplFile : public IDebugDumpImpl {
public:
  // Opens a new pair. A pair that is still open is left open: its last lines may be on their way from another thread.
  void Start() override;
  // Closes what is open.
  void Stop() override;
  // Both writers ask for the result file, so that audio is kept only while both files of the recording are open.
  void DebugDump(const std::string& text) override;
  void DebugDump(const void* data, std::size_t size) override;

private:
  static_assert(std::atomic<std::FILE*>::is_always_lock_free);

  static void m_Close(std::atomic<std::FILE*>& file);

  std::int32_t m_StartCount = 0;
  std::string m_DumpFileName;
  std::string m_ResultFileName;
  // Opened on the recorder thread while the delivery thread may already ask for them.
  std::atomic<std::FILE*> m_pDumpFile{nullptr};
  std::atomic<std::FILE*> m_pResultFile{nullptr};
};
