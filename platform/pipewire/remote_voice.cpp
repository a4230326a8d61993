// The voice channel: commands start and stop a recording of the microphone, and a thread of its own delivers the
// blocks.
#include "orvex/platform/remote_voice.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "linux/no_destroy.h"
#include "linux/port.h"
#include "pipewire/client/microphone.h"
#include "pipewire/client/pc_config.h"
#include "pipewire/client/pipewire_error.h"
#include "pipewire/client/semaphore.h"
#include "pipewire/session.h"
#include "pipewire/voice_window.h"

namespace orvex::pipewire {
namespace {

// Half a second, in which the service listens to the ambient noise. No microphone that is on gives nothing but zeros.
constexpr unsigned kSilentBlocks = 30;

std::atomic<int> voiceWindowMs{kVoiceWindowMs};

std::uint64_t BlocksOfWindow() {
  return static_cast<std::uint64_t>(voiceWindowMs / kVoiceBlockMs);
}

std::string ChosenMicrophone() {
  return ReadPcConfig(PcConfigFile()).microphone;
}

bool IsMicrophoneThere() {
  Session& session = Session::Instance();
  return session.Do(0, [&] { return session.GetConnection().FindNode(ChosenMicrophone()) == nullptr ? 0 : 1; }) != 0;
}

int Fail(int result, const std::exception& problem) {
  port::ReportProblem(problem.what());
  return result;
}

// The one microphone and its one receiver. Neither lock is held while the receiver's callback runs.
class RemoteVoice {
public:
  // Receivers may be unregistered by the destructors of static objects.
  static RemoteVoice& Instance() {
    Session::Instance();  // ends later than this
    static const port::NoDestroy<RemoteVoice> voice;
    return *voice;
  }

  int Register(VoiceDataCallback callback, void* userData);
  int Unregister();
  int Start();
  int GoOn();
  int Stop();

private:
  struct Receiver {
    VoiceDataCallback callback = nullptr;
    void* userData = nullptr;
    std::uint64_t number = 0;  // tells registrations apart
  };
  struct Recording {
    std::uint64_t number = 0;  // tells recordings apart
    std::string node;
    std::unique_ptr<Microphone> microphone;  // null: nothing is recorded
    std::shared_ptr<std::atomic<bool>> isGone;
    std::uint64_t blocksLeft = 0;  // of the voice window
    unsigned silentBlocks = 0;     // since the beginning, while there has been nothing else
    bool isHeard = false;
  };
  // Ends the thread when the process does, before anything older that its callback may use is destroyed.
  struct EndOfProcess {
    ~EndOfProcess() { Instance().End(); }
  };
  using Lock = std::unique_lock<std::mutex>;

  bool ExtendWindow();
  Recording OpenRecording();
  bool EnsureThread();
  void End();
  void Deliver();
  bool DeliverNext(Lock& lock);
  void DeliverBlock(Lock& lock, const VoiceBlock& block);
  void DeliverRecord(Lock& lock, const VoiceData* record);
  void EndRecording(Lock& lock, const std::string& problem);
  void LookForSilence(Lock& lock, const VoiceBlock& block);

  std::mutex m_CommandMutex;  // one start or stop at a time; taken first
  std::mutex m_Mutex;         // of what follows
  std::condition_variable m_HasReturned;
  Receiver m_Receiver;
  std::uint64_t m_RunningNumber = 0;  // the registration whose callback runs now; 0: none runs
  std::uint64_t m_LastNumber = 0;
  Recording m_Recording;
  std::thread m_Thread;
  bool m_IsEnding = false;

  Semaphore m_Wake;  // raised for what the delivery thread has to look at
};

int RemoteVoice::Register(VoiceDataCallback callback, void* userData) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Receiver.callback != nullptr) {
    return kVoiceTaken;
  }
  m_Receiver = {callback, userData, ++m_LastNumber};
  return kVoiceDone;
}

int RemoteVoice::Unregister() {
  Lock lock(m_Mutex);
  if (m_Receiver.callback == nullptr) {
    return kVoiceInvalid;
  }
  const std::uint64_t number = m_Receiver.number;
  m_Receiver = {};
  m_HasReturned.wait(lock, [&] { return m_RunningNumber != number; });
  return kVoiceDone;
}

int RemoteVoice::Start() {
  const std::lock_guard<std::mutex> command(m_CommandMutex);
  if (ExtendWindow()) {
    return kVoiceDone;
  }
  if (!EnsureThread()) {
    return kVoiceRefused;
  }
  try {
    Recording recording = OpenRecording();
    const std::lock_guard<std::mutex> lock(m_Mutex);
    recording.number = ++m_LastNumber;
    m_Recording = std::move(recording);
  } catch (const MicrophoneError& problem) {
    return Fail(problem.GetResult(), problem);
  } catch (const PcConfigError& problem) {
    return Fail(kVoiceNoRemote, problem);
  } catch (const PipeWireError& problem) {
    return Fail(kVoiceRefused, problem);
  }
  m_Wake.Post();
  return kVoiceDone;
}

int RemoteVoice::GoOn() {
  return ExtendWindow() || IsMicrophoneThere() ? kVoiceDone : kVoiceNoRemote;
}

int RemoteVoice::Stop() {
  const std::lock_guard<std::mutex> command(m_CommandMutex);
  Recording ended;
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    ended = std::exchange(m_Recording, {});
  }
  return ended.microphone || IsMicrophoneThere() ? kVoiceDone : kVoiceNoRemote;
}

// False: nothing is recorded.
bool RemoteVoice::ExtendWindow() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (!m_Recording.microphone) {
    return false;
  }
  m_Recording.blocksLeft = BlocksOfWindow();
  return true;
}

RemoteVoice::Recording RemoteVoice::OpenRecording() {
  Recording recording;
  recording.isGone = std::make_shared<std::atomic<bool>>(false);
  recording.blocksLeft = BlocksOfWindow();
  const auto onGone = [this, isGone = recording.isGone] {
    *isGone = true;
    m_Wake.Post();
  };
  recording.node = ChosenMicrophone();
  recording.microphone =
      std::make_unique<Microphone>(recording.node, Microphone::Listener{[this] { m_Wake.Post(); }, onGone});
  return recording;
}

bool RemoteVoice::EnsureThread() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Thread.joinable() || m_IsEnding) {
    return !m_IsEnding;
  }
  static const EndOfProcess end;
  try {
    m_Thread = std::thread(&RemoteVoice::Deliver, this);
  } catch (const std::system_error&) {
    return false;
  }
  pthread_setname_np(m_Thread.native_handle(), "remote-voice");
  return true;
}

void RemoteVoice::End() {
  Stop();
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_IsEnding = true;
  }
  m_Wake.Post();
  if (m_Thread.joinable()) {
    m_Thread.join();
  }
}

void RemoteVoice::Deliver() {
  Lock lock(m_Mutex);
  while (!m_IsEnding) {
    if (!DeliverNext(lock)) {
      lock.unlock();
      m_Wake.Wait();
      lock.lock();
    }
  }
}

// False: there is nothing to do until the next wake-up.
bool RemoteVoice::DeliverNext(Lock& lock) {
  if (!m_Recording.microphone) {
    return false;
  }
  VoiceBlock block;
  if (m_Recording.microphone->GetBlocks().Take(block)) {
    DeliverBlock(lock, block);
  } else if (*m_Recording.isGone) {
    EndRecording(lock, "the microphone \"" + m_Recording.node + "\" is gone; the recording has ended");
  } else {
    return false;
  }
  return true;
}

// Everything may change while a callback runs, the recording too.
void RemoteVoice::DeliverBlock(Lock& lock, const VoiceBlock& block) {
  const std::uint64_t number = m_Recording.number;
  const VoiceData record{kVoiceBlockBytes, reinterpret_cast<const std::uint8_t*>(block.samples.data())};
  LookForSilence(lock, block);
  for (std::uint64_t lost = 0; lost <= block.lostBefore && m_Recording.number == number; ++lost) {
    if (m_Recording.blocksLeft == 0) {
      return EndRecording(lock, "");
    }
    --m_Recording.blocksLeft;
    DeliverRecord(lock, lost < block.lostBefore ? nullptr : &record);
  }
}

void RemoteVoice::DeliverRecord(Lock& lock, const VoiceData* record) {
  const Receiver receiver = m_Receiver;
  if (receiver.callback == nullptr) {
    return;
  }
  m_RunningNumber = receiver.number;
  lock.unlock();
  receiver.callback(record, receiver.userData);
  lock.lock();
  m_RunningNumber = 0;
  m_HasReturned.notify_all();
}

void RemoteVoice::EndRecording(Lock& lock, const std::string& problem) {
  {
    const Recording ended = std::exchange(m_Recording, {});
    lock.unlock();
    if (!problem.empty()) {
      port::ReportProblem(problem);
    }
  }
  lock.lock();
}

// A microphone that is muted, or switched off, gives zeros. Nothing can be measured then, and only the user can help.
void RemoteVoice::LookForSilence(Lock& lock, const VoiceBlock& block) {
  m_Recording.isHeard = m_Recording.isHeard || std::any_of(block.samples.begin(), block.samples.end(),
                                                           [](std::int16_t sample) { return sample != 0; });
  if (m_Recording.isHeard || ++m_Recording.silentBlocks != kSilentBlocks) {
    return;
  }
  const std::string node = m_Recording.node;
  lock.unlock();
  port::ReportProblem("the microphone \"" + node + "\" gives digital silence: it is muted or switched off");
  lock.lock();
}

struct Command {
  std::array<std::uint8_t, 2> bytes;
  int (RemoteVoice::*run)();
};

constexpr std::array<Command, 3> kCommands{{
    {{0x05, 0x00}, &RemoteVoice::Start},
    {{0x04, 0x00}, &RemoteVoice::Start},
    {{0x03, 0x10}, &RemoteVoice::GoOn},
}};

}  // namespace

void SetVoiceWindow(int windowMs) {
  voiceWindowMs = windowMs;
}

}  // namespace orvex::pipewire

using orvex::pipewire::RemoteVoice;

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData) {
  return callback == nullptr ? kVoiceInvalid : RemoteVoice::Instance().Register(callback, userData);
}

int bt_hid_unset_audio_data_receive_cb() {
  return RemoteVoice::Instance().Unregister();
}

int bt_hid_send_rc_command(const char* /*target: there is one microphone, whatever its name*/,
                           const std::uint8_t* command, std::size_t length) {
  for (const auto& known : orvex::pipewire::kCommands) {
    if (command != nullptr && length == known.bytes.size() &&
        std::equal(known.bytes.begin(), known.bytes.end(), command)) {
      return (RemoteVoice::Instance().*known.run)();
    }
  }
  return kVoiceInvalid;
}

int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  return RemoteVoice::Instance().Stop();
}
