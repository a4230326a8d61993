// Plays the test sound once per request, on a worker thread of the main loop's pool.
#pragma once

#include <Ecore.h>

#include <cstdint>
#include <string>

#include "Common/AlsaAudio.h"

// All operations on the main loop, but for the worker's body. The worker reads the path, fills header and samples and
// writes to the device; the pool runs the end or cancel function on the main loop after the worker has returned. There
// is one worker at a time, so that nothing here needs a lock: a sound that is asked for while a stopped one is still
// written begins when that one has been written.
class OrvexSoundPlayer {
public:
  using Callback = void (*)(void* userData);

  OrvexSoundPlayer() = default;
  ~OrvexSoundPlayer();
  OrvexSoundPlayer(const OrvexSoundPlayer&) = delete;
  OrvexSoundPlayer& operator=(const OrvexSoundPlayer&) = delete;

  // Says what the next play is: a canonical PCM WAV file (48000 Hz, 2 channels, 16 bits; "fmt " right behind the RIFF
  // header, "data" right behind it), and whom to call, on the main loop, when it was played or was cancelled. Another
  // path than before only when no worker runs.
  void Prepare(const std::string& wavePath, Callback endCallback, Callback cancelCallback, void* userData);
  // Opens the device and starts the worker, after the one that still writes. False: the device could not be opened; no
  // callback follows. A worker that cannot be started counts as started, and no callback follows either.
  bool PlayWave();
  // Asks the worker to end. What it is writing is written to its end; the cancel callback comes after that. A sound
  // that has not begun never does. Without a worker the device is closed.
  void StopWave();

private:
  // The file's headers as they stand in it, little-endian.
  using RiffHeader = std::uint8_t[12];      // "RIFF", size, "WAVE"
  using FmtChunk = std::uint8_t[24];        // "fmt ", size, 16 bytes of format
  using DataChunkHeader = std::uint8_t[8];  // "data", size

  enum class Worker {
    kNone,      // the device and the samples are the main loop's
    kStarting,  // inside ecore_thread_run()
    kRunning,   // until its end or cancel function has run
  };

  static void m_StartPlayCB(void* data, Ecore_Thread* thread);
  static void m_EndPlayerCB(void* data, Ecore_Thread* thread);
  static void m_CancelPlayCB(void* data, Ecore_Thread* thread);
  void m_StartWorker();
  void m_WorkerIsGone();
  void m_PlayWave(const std::string& path);
  void m_LoadWaveFile(const std::string& path);
  void m_FreeAudioData();
  std::uint32_t m_DataSize() const;

  std::uint8_t* m_pAudioData = nullptr;  // owned
  std::string m_strWavePath;
  // Still set after a worker has ended by itself.
  Ecore_Thread* m_PlayerThread = nullptr;
  Callback m_pEndCallback = nullptr;
  Callback m_pCancelCallback = nullptr;
  void* m_pUserData = nullptr;
  AlsaAudio m_AlsaAudio;
  RiffHeader m_RiffHeader = {};
  FmtChunk m_FmtChunk = {};
  DataChunkHeader m_DataChunkHeader = {};
  Worker m_Worker = Worker::kNone;  // main loop only
  bool m_PlayFollows = false;       // when the worker is gone
};
