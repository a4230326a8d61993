// Debug dump into two files of /tmp per recording.
#include "Util/DebugDumpImplFile.h"

#include <fcntl.h>
#include <unistd.h>

#include "Util/OrvexLog.h"

namespace {

// As fopen(name, "wb+"), but private to the user and never through a link that somebody left in /tmp. Null on failure.
std::FILE* OpenPrivately(const std::string& name) {
  const int fd = open(name.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (fd < 0) {
    return nullptr;
  }
  std::FILE* file = fdopen(fd, "wb+");
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
