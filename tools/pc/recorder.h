// Records the microphone from now on.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "pc/living_room.h"
#include "pipewire/client/microphone.h"
#include "pipewire/client/semaphore.h"

namespace orvex::tools {

class Recorder {
public:
  // Returns when the microphone sends. Throws MicrophoneProblem.
  explicit Recorder(const std::string& microphone);
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  // So many samples have been heard. Any thread.
  std::size_t GetCount() const;
  // The microphone sends nothing any more. Any thread.
  bool IsGone() const { return m_IsGone; }
  // Ends the recording. Throws MicrophoneProblem when the microphone is gone.
  VoiceSamples Finish();

private:
  void Collect();
  void Stop();

  const std::string m_Name;
  pipewire::Semaphore m_Wake;
  std::atomic<bool> m_IsGone{false};
  std::atomic<bool> m_IsEnding{false};
  std::unique_ptr<pipewire::Microphone> m_Microphone;
  mutable std::mutex m_Mutex;  // of the samples
  VoiceSamples m_Samples;
  std::thread m_Thread;
};

}  // namespace orvex::tools
