// The remote control's voice channel: commands start and stop the simulated remote, a thread of its own delivers what
// its microphone hears.
#include "orvex/platform/remote_voice.h"

#include <pthread.h>

#include <array>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>

#include "linux/no_destroy.h"
#include "virtual/faults.h"
#include "virtual/living_room.h"

namespace orvex::virtual_tv {
namespace {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "a block's samples are delivered as they lie in memory");

// A thread made while this lives takes no signals: they belong to the main loop.
class SignalsBlocked {
public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_Before);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_Before, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
  sigset_t m_Before{};
};

// The one remote control and its one receiver. Its lock is taken before the room's and never while a callback runs.
class RemoteVoice {
public:
  explicit RemoteVoice(LivingRoom& room) : m_Room(room) {}

  // Receivers may be unregistered by the destructors of static objects.
  static RemoteVoice& Instance() {
    static const port::NoDestroy<RemoteVoice> voice(LivingRoom::Instance());
    return *voice;
  }

  int Register(VoiceDataCallback callback, void* userData);
  int Unregister();
  int Start();
  int Extend();
  int Stop();

private:
  struct Receiver {
    VoiceDataCallback callback = nullptr;
    void* userData = nullptr;
    std::uint64_t number = 0;  // tells registrations apart
  };
  // Ends the thread when the process does, before anything older that its callback may use is destroyed.
  struct ThreadEnd {
    ~ThreadEnd() { Instance().End(); }
  };

  bool EnsureThread();
  void End();
  void Deliver();
  void DeliverBlock(std::unique_lock<std::mutex>& lock);

  LivingRoom& m_Room;
  std::mutex m_Mutex;
  std::condition_variable m_Changed;  // schedule, m_RunningNumber or m_IsEnding
  Receiver m_Receiver;
  std::uint64_t m_RunningNumber = 0;  // the registration whose callback runs now; 0: none runs
  std::uint64_t m_LastNumber = 0;
  std::thread m_Thread;
  bool m_IsEnding = false;
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
  std::unique_lock<std::mutex> lock(m_Mutex);
  if (m_Receiver.callback == nullptr) {
    return kVoiceInvalid;
  }
  const std::uint64_t number = m_Receiver.number;
  m_Receiver = {};
  m_Changed.wait(lock, [&] { return m_RunningNumber != number; });
  return kVoiceDone;
}

int RemoteVoice::Start() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (!m_Room.IsPresent() || m_IsEnding) {
    return kVoiceNoRemote;
  }
  if (!EnsureThread()) {
    return kVoiceRefused;
  }
  const MonotonicTime now = MonotonicNow();
  if (m_Room.NextDelivery()) {
    m_Room.ExtendVoice(now);
  } else {
    m_Room.StartVoice(now);
  }
  m_Changed.notify_all();
  return kVoiceDone;
}

int RemoteVoice::Extend() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_Room.ExtendVoice(MonotonicNow());
  m_Changed.notify_all();
  return m_Room.IsPresent() ? kVoiceDone : kVoiceNoRemote;
}

int RemoteVoice::Stop() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_Room.StopVoice();
  m_Changed.notify_all();
  return m_Room.IsPresent() ? kVoiceDone : kVoiceNoRemote;
}

bool RemoteVoice::EnsureThread() {
  if (m_Thread.joinable()) {
    return true;
  }
  static const ThreadEnd end;
  const SignalsBlocked blocked;
  try {
    m_Thread = std::thread(&RemoteVoice::Deliver, this);
  } catch (const std::system_error&) {
    return false;
  }
  pthread_setname_np(m_Thread.native_handle(), "remote-voice");
  return true;
}

void RemoteVoice::End() {
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_IsEnding = true;
    m_Changed.notify_all();
  }
  if (m_Thread.joinable()) {
    m_Thread.join();
  }
}

// A thread that is late finds the next block due at once, so blocks come late and in order, and none is left out.
void RemoteVoice::Deliver() {
  std::unique_lock<std::mutex> lock(m_Mutex);
  while (!m_IsEnding) {
    const auto due = m_Room.NextDelivery();
    if (!due) {
      m_Changed.wait(lock);
    } else if (MonotonicNow() < *due) {
      m_Changed.wait_until(lock, std::chrono::steady_clock::time_point(*due));
    } else {
      DeliverBlock(lock);
    }
  }
}

void RemoteVoice::DeliverBlock(std::unique_lock<std::mutex>& lock) {
  LivingRoom::Block block;
  const bool hasArrived = m_Room.TakeBlock(block);
  const Receiver receiver = m_Receiver;
  if (!hasArrived || receiver.callback == nullptr) {
    return;
  }
  const VoiceData record{sizeof(block), reinterpret_cast<const std::uint8_t*>(block.data())};
  m_RunningNumber = receiver.number;
  lock.unlock();
  receiver.callback(&record, receiver.userData);
  lock.lock();
  m_RunningNumber = 0;
  m_Changed.notify_all();
}

struct Command {
  std::array<std::uint8_t, 2> bytes;
  Fault fault;
  int (RemoteVoice::*run)();
};

const std::array<Command, 3> kCommands{{
    {{0x05, 0x00}, Fault::kVoiceStart, &RemoteVoice::Start},
    {{0x04, 0x00}, Fault::kVoiceStart, &RemoteVoice::Start},
    {{0x03, 0x10}, Fault::kVoiceExtend, &RemoteVoice::Extend},
}};

}  // namespace
}  // namespace orvex::virtual_tv

using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;
using orvex::virtual_tv::RemoteVoice;

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData) {
  if (const auto answer = Faults::Instance().Next(Fault::kVoiceRegister)) {
    return *answer;
  }
  return callback == nullptr ? kVoiceInvalid : RemoteVoice::Instance().Register(callback, userData);
}

int bt_hid_unset_audio_data_receive_cb() {
  const auto answer = Faults::Instance().Next(Fault::kVoiceUnregister);
  // Whatever the answer, no callback runs on.
  const int result = RemoteVoice::Instance().Unregister();
  return answer.value_or(result);
}

int bt_hid_send_rc_command(const char* /*target: there is one remote, whatever its name*/, const std::uint8_t* command,
                           std::size_t length) {
  for (const auto& known : orvex::virtual_tv::kCommands) {
    if (command != nullptr && length == known.bytes.size() && command[0] == known.bytes[0] &&
        command[1] == known.bytes[1]) {
      const auto answer = Faults::Instance().Next(known.fault);
      return answer ? *answer : (RemoteVoice::Instance().*known.run)();
    }
  }
  return kVoiceInvalid;
}

int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  const auto answer = Faults::Instance().Next(Fault::kVoiceStop);
  return answer ? *answer : RemoteVoice::Instance().Stop();
}
