// A receiver of the remote control's blocks that keeps what it got and lets a test wait for it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "orvex/platform/remote_voice.h"
#include "virtual/monotonic_time.h"

namespace orvex::virtual_tv {

class VoiceRecorder {
public:
  struct Block {
    MonotonicTime arrival;
    std::vector<std::int16_t> samples;
  };

  // `onBlock` runs on the delivery thread, in the callback, after the block was kept.
  explicit VoiceRecorder(std::function<void()> onBlock = {}) : m_OnBlock(std::move(onBlock)) {}

  ~VoiceRecorder() {
    if (m_IsRegistered) {
      Unregister();
    }
  }
  VoiceRecorder(const VoiceRecorder&) = delete;
  VoiceRecorder& operator=(const VoiceRecorder&) = delete;

  int Register() {
    const int result = bt_hid_set_audio_data_receive_cb(&VoiceRecorder::Receive, this);
    m_IsRegistered = m_IsRegistered || result == 0;
    return result;
  }
  int Unregister() {
    m_IsRegistered = false;
    return bt_hid_unset_audio_data_receive_cb();
  }

  // False: they did not come within a time that only a hang takes.
  bool WaitForBlocks(std::size_t count) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    return m_Arrived.wait_for(lock, std::chrono::seconds(20), [&] { return m_Blocks.size() >= count; });
  }

  std::vector<Block> Blocks() const {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    return m_Blocks;
  }

  std::vector<std::int16_t> Samples() const {
    std::vector<std::int16_t> samples;
    for (const Block& block : Blocks()) {
      samples.insert(samples.end(), block.samples.begin(), block.samples.end());
    }
    return samples;
  }

private:
  static void Receive(const VoiceData* record, void* self) { static_cast<VoiceRecorder*>(self)->Take(*record); }

  void Take(const VoiceData& record) {
    Block block{MonotonicNow(), std::vector<std::int16_t>(record.byteCount / sizeof(std::int16_t))};
    std::memcpy(block.samples.data(), record.bytes, block.samples.size() * sizeof(std::int16_t));
    {
      const std::lock_guard<std::mutex> lock(m_Mutex);
      m_Blocks.push_back(std::move(block));
    }
    m_Arrived.notify_all();
    if (m_OnBlock) {
      m_OnBlock();
    }
  }

  const std::function<void()> m_OnBlock;
  bool m_IsRegistered = false;
  mutable std::mutex m_Mutex;
  std::condition_variable m_Arrived;
  std::vector<Block> m_Blocks;
};

inline int SendVoiceCommand(std::uint8_t first, std::uint8_t second) {
  const std::uint8_t command[] = {first, second};
  return bt_hid_send_rc_command(nullptr, command, sizeof(command));
}
inline int StartVoice() {
  return SendVoiceCommand(0x05, 0x00);
}
inline int ExtendVoice() {
  return SendVoiceCommand(0x03, 0x10);
}

}  // namespace orvex::virtual_tv
