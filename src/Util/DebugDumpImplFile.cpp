// Opens a pair of files in /tmp, where every user may write, and writes them.
#include "Util/DebugDumpImplFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Util/OrvexLog.h"

namespace {

// True for a regular file of this user that has no second name.
bool IsPrivate(int fd) {
  struct stat state {};
  return fstat(fd, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink == 1 && state.st_uid == geteuid();
}

// As fopen(name, "wb+"), but safe in a folder of all users: a pipe of that name is not waited for, and nothing but a
// file of this user is changed.
// Null on failure.
std::FILE* OpenPrivately(const std::string& name) {
  constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;
  const int fd = open(name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kOwnerOnly);
  if (fd < 0) {
    return nullptr;
  }
  const bool isReady = IsPrivate(fd) && fchmod(fd, kOwnerOnly) == 0 && ftruncate(fd, 0) == 0;
  std::FILE* file = isReady ? fdopen(fd, "wb+") : nullptr;
  if (file == nullptr) {
    close(fd);
  }
  return file;
}

}  // namespace

void CDebugDumpImplFile::Start() {
  ORVEX_INFO("CDebugDumpImplFile start");
  ++m_StartCount;
  const std::string suffix = std::to_string(getpid()) + "_" + std::to_string(m_StartCount);
  m_DumpFileName = "/tmp/audio_dump_" + suffix;
  m_ResultFileName = "/tmp/audio_result_" + suffix + ".csv";
  ORVEX_MILESTONE("Temp file name=[%s][%s]", m_DumpFileName.c_str(), m_ResultFileName.c_str());
  m_pDumpFile = OpenPrivately(m_DumpFileName);
  if (m_pDumpFile == nullptr) {
    ORVEX_FAILURE("[ERROR] File not found!");
    return;
  }
  m_pResultFile = OpenPrivately(m_ResultFileName);
  if (m_pResultFile == nullptr) {
    ORVEX_FAILURE("[ERROR] File not found!");
  }
}

void CDebugDumpImplFile::Stop() {
  ORVEX_INFO("CDebugDumpImplFile Stop");
  m_Close(m_pDumpFile);
  m_Close(m_pResultFile);
}

void CDebugDumpImplFile::DebugDump(const std::string& text) {
  std::FILE* file = m_pResultFile;
  if (file == nullptr) {
    ORVEX_FAILURE("already null");
    return;
  }
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), file));
}

void CDebugDumpImplFile::DebugDump(const void* data, std::size_t size) {
  if (m_pResultFile == nullptr) {
    ORVEX_FAILURE("already null");
    return;
  }
  // A second Start whose raw file could not be opened leaves the previous result file alone.
  std::FILE* file = m_pDumpFile;
  if (file != nullptr) {
    static_cast<void>(std::fwrite(data, 1, size, file));
  }
}

void CDebugDumpImplFile::m_Close(std::atomic<std::FILE*>& file) {
  if (file != nullptr) {
    std::fclose(file);
    file = nullptr;
  }
}
