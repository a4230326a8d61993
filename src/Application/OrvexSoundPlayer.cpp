// Plays the test sound once per request.
#include "Application/OrvexSoundPlayer.h"

#include <cstdlib>
#include <fstream>

#include "Util/OrvexLog.h"
#include "orvex/platform/file_location.h"

namespace {

constexpr std::size_t kSizeOffset = 4;          // of the size in each chunk's header
constexpr std::int64_t kPlainFormatBytes = 16;  // size of a format chunk without extension

std::uint32_t ReadLittleEndian32(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8U |
         static_cast<std::uint32_t>(bytes[2]) << 16U | static_cast<std::uint32_t>(bytes[3]) << 24U;
}

// Reads up to `size` bytes; on a stream that has failed, or from where the file ends, `target` keeps what it holds.
void ReadBytes(std::ifstream& file, std::uint8_t* target, std::uint32_t size) {
  file.read(reinterpret_cast<char*>(target), static_cast<std::streamsize>(size));
}

}  // namespace

OrvexSoundPlayer::~OrvexSoundPlayer() {
  StopWave();
  m_AlsaAudio.Destroy();
}

void OrvexSoundPlayer::Prepare(const std::string& wavePath, Callback endCallback, Callback cancelCallback,
                               void* userData) {
  m_strWavePath = wavePath;
  m_pEndCallback = endCallback;
  m_pCancelCallback = cancelCallback;
  m_pUserData = userData;
}

bool OrvexSoundPlayer::PlayWave() {
  if (m_PlayerThread != nullptr) {
    ORVEX_INFO("m_PlayerThread already Started");
  }
  ORVEX_INFO("start Player ");
  if (!m_AlsaAudio.Open()) {
    return false;
  }
  m_PlayerThread = ecore_thread_run(m_StartPlayCB, m_EndPlayerCB, m_CancelPlayCB, this);
  if (m_PlayerThread == nullptr) {
    ORVEX_FAILURE("Assertion failed");
  }
  return true;
}

void OrvexSoundPlayer::StopWave() {
  if (m_PlayerThread == nullptr) {
    ORVEX_FAILURE("already thread stop");
    m_AlsaAudio.Destroy();
    return;
  }
  ORVEX_INFO("cancel_thread");
  static_cast<void>(ecore_thread_cancel(m_PlayerThread));
  m_PlayerThread = nullptr;
}

void OrvexSoundPlayer::m_StartPlayCB(void* data, Ecore_Thread* /*thread*/) {
  ORVEX_INFO("m_StartPlay");
  auto* pThis = static_cast<OrvexSoundPlayer*>(data);
  if (pThis == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  pThis->m_PlayWave(pThis->m_strWavePath);
}

void OrvexSoundPlayer::m_PlayWave(const std::string& path) {
  m_LoadWaveFile(path);
  if (m_pAudioData == nullptr || m_DataSize() == 0) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_AlsaAudio.Play(m_pAudioData, m_DataSize());
}

// The file is trusted: nothing but the format chunk's size and the data size is looked at.
void OrvexSoundPlayer::m_LoadWaveFile(const std::string& path) {
  ORVEX_INFO("");
  if (m_pAudioData != nullptr) {
    ORVEX_FAILURE("audio data is not null");
    return;
  }
  if (path.empty()) {
    ORVEX_FAILURE("path is null");
    return;
  }
  std::ifstream file(file_location(path), std::ios::binary);
  file.seekg(0);
  ReadBytes(file, m_RiffHeader, sizeof m_RiffHeader);
  ReadBytes(file, m_FmtChunk, sizeof m_FmtChunk);
  file.seekg(std::int64_t{ReadLittleEndian32(m_FmtChunk + kSizeOffset)} - kPlainFormatBytes, std::ios::cur);
  ReadBytes(file, m_DataChunkHeader, sizeof m_DataChunkHeader);
  const std::uint32_t dataSize = m_DataSize();
  ORVEX_INFO("buffer length %d", static_cast<int>(dataSize));
  if (dataSize == 0) {
    file.close();
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  // A file that is too short plays silence for what it lacks. Zeroed by the system, which takes no memory for what is
  // not read: a broken header may name 4 GiB.
  m_pAudioData = static_cast<std::uint8_t*>(std::calloc(dataSize, 1));
  if (m_pAudioData != nullptr) {
    ReadBytes(file, m_pAudioData, dataSize);
  }
}

void OrvexSoundPlayer::m_EndPlayerCB(void* data, Ecore_Thread* /*thread*/) {
  ORVEX_INFO("m_EndPlayerCB");
  auto* pThis = static_cast<OrvexSoundPlayer*>(data);
  if (pThis == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  pThis->m_FreeAudioData();
  if (pThis->m_pEndCallback != nullptr) {
    pThis->m_pEndCallback(pThis->m_pUserData);
  }
  pThis->m_AlsaAudio.Destroy();
}

// Closes the device before anything else, other than after a normal end.
void OrvexSoundPlayer::m_CancelPlayCB(void* data, Ecore_Thread* /*thread*/) {
  ORVEX_INFO("m_CancelPlayCB");
  auto* pThis = static_cast<OrvexSoundPlayer*>(data);
  if (pThis == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  pThis->m_AlsaAudio.Destroy();
  pThis->m_FreeAudioData();
  if (pThis->m_pCancelCallback != nullptr) {
    pThis->m_pCancelCallback(pThis->m_pUserData);
  }
}

void OrvexSoundPlayer::m_FreeAudioData() {
  std::free(m_pAudioData);
  m_pAudioData = nullptr;
}

std::uint32_t OrvexSoundPlayer::m_DataSize() const {
  return ReadLittleEndian32(m_DataChunkHeader + kSizeOffset);
}
