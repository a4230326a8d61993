// A receiver of the remote control's blocks that keeps what it got.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "conformance/port_driver.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::conformance {

// What one call of the receiver brought.
struct HeardBlock {
  bool isNull;
  std::size_t byteCount;
  double atMs;
  std::string thread;
};

// Stops the remote and unregisters itself at the end of its life.
class VoiceListener {
public:
  explicit VoiceListener(const PortDriver& port) : m_Port(port) {}
  ~VoiceListener();
  VoiceListener(const VoiceListener&) = delete;
  VoiceListener& operator=(const VoiceListener&) = delete;

  int Register();
  int Unregister();

  // Any thread.
  std::vector<HeardBlock> Blocks() const;
  std::size_t Count() const;
  // True when two calls overlapped.
  bool HasOverlapped() const;

  // In the callback, on the delivery thread, after the block was kept. To be set before Register().
  std::function<void()> onBlock = [] {};

private:
  static void Receive(const VoiceData* record, void* self);
  void Take(const VoiceData* record);

  const PortDriver& m_Port;
  bool m_IsRegistered = false;
  mutable std::mutex m_Mutex;
  std::vector<HeardBlock> m_Blocks;
  int m_Running = 0;
  bool m_HasOverlapped = false;
};

int SendVoiceCommand(std::uint8_t first, std::uint8_t second);
inline int StartVoice() {
  return SendVoiceCommand(0x05, 0x00);
}
inline int GoOnRecording() {
  return SendVoiceCommand(0x03, 0x10);
}
inline int StopVoice() {
  return bt_hid_rc_stop_sending_voice(nullptr);
}

}  // namespace orvex::conformance
