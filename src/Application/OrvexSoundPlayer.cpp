// Reads the sound file, writes it to the device and keeps to one worker at a time.
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
  // A worker that was stopped may still read the path.
  if (m_strWavePath != wavePath) {
    m_strWavePath = wavePath;
  }
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
  if (m_Worker == Worker::kNone) {
    m_StartWorker();
  } else {
    m_PlayFollows = true;
  }
  return true;
}

void OrvexSoundPlayer::m_StartWorker() {
  m_Worker = Worker::kStarting;
  m_PlayerThread = ecore_thread_run(m_StartPlayCB, m_EndPlayerCB, m_CancelPlayCB, this);
  m_Worker = m_PlayerThread == nullptr ? Worker::kNone : Worker::kRunning;
  if (m_PlayerThread == nullptr) {
    ORVEX_FAILURE("Assertion failed");
  }
}

// At the end of the end or cancel function.
void OrvexSoundPlayer::m_WorkerIsGone() {
  m_Worker = Worker::kNone;
  if (m_PlayFollows) {
    m_PlayFollows = false;
    if (m_AlsaAudio.Open()) {
      m_StartWorker();
    }
  }
}

void OrvexSoundPlayer::StopWave() {
  m_PlayFollows = false;
  if (m_PlayerThread == nullptr) {
    ORVEX_FAILURE("already thread stop");
    // A worker that was stopped before still writes: its cancel function closes the device.
    if (m_Worker == Worker::kNone) {
      m_AlsaAudio.Destroy();
    }
    return;
  }
  ORVEX_INFO("cancel_thread");
  // After a normal end the pool has taken the handle back, and cancelling it would write to memory that the pool uses
  // for something else by then. Null cancels nothing.
  static_cast<void>(ecore_thread_cancel(m_Worker == Worker::kRunning ? m_PlayerThread : nullptr));
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
  pThis->m_WorkerIsGone();
}

// Closes the device before anything else, unlike m_EndPlayerCB.
void OrvexSoundPlayer::m_CancelPlayCB(void* data, Ecore_Thread* /*thread*/) {
  auto* pThis = static_cast<OrvexSoundPlayer*>(data);
  // The pool also calls this from inside ecore_thread_run() when it gets no thread. That play has not begun, and nobody
  // is called back.
  if (pThis != nullptr && pThis->m_Worker == Worker::kStarting) {
    return;
  }
  ORVEX_INFO("m_CancelPlayCB");
  if (pThis == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  pThis->m_AlsaAudio.Destroy();
  pThis->m_FreeAudioData();
  if (pThis->m_pCancelCallback != nullptr) {
    pThis->m_pCancelCallback(pThis->m_pUserData);
  }
  pThis->m_WorkerIsGone();
}

void OrvexSoundPlayer::m_FreeAudioData() {
  std::free(m_pAudioData);
  m_pAudioData = nullptr;
}

std::uint32_t OrvexSoundPlayer::m_DataSize() const {
  return ReadLittleEndian32(m_DataChunkHeader + kSizeOffset);
}
