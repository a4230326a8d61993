// Keeps blocks; reads each of their bytes, which a memory checker looks at.
#include "conformance/voice_listener.h"

#include <numeric>

namespace orvex::conformance {

VoiceListener::~VoiceListener() {
  if (m_IsRegistered) {
    StopVoice();
    Unregister();
  }
}

int VoiceListener::Register() {
  const int result = bt_hid_set_audio_data_receive_cb(&Receive, this);
  m_IsRegistered = m_IsRegistered || result == kVoiceDone;
  return result;
}

int VoiceListener::Unregister() {
  m_IsRegistered = false;
  return bt_hid_unset_audio_data_receive_cb();
}

std::vector<HeardBlock> VoiceListener::Blocks() const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Blocks;
}

std::size_t VoiceListener::Count() const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Blocks.size();
}

bool VoiceListener::HasOverlapped() const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_HasOverlapped;
}

void VoiceListener::Receive(const VoiceData* record, void* self) {
  static_cast<VoiceListener*>(self)->Take(record);
}

void VoiceListener::Take(const VoiceData* record) {
  const std::size_t count = record == nullptr ? 0 : record->byteCount;
  // Written to, so that the compiler does not leave the reading out.
  volatile unsigned sum = count == 0 ? 0U : std::accumulate(record->bytes, record->bytes + count, 0U);
  static_cast<void>(sum);
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_HasOverlapped = m_HasOverlapped || ++m_Running > 1;
    m_Blocks.push_back({record == nullptr, count, m_Port.NowMs(), m_Port.CurrentThread()});
  }
  onBlock();
  const std::lock_guard<std::mutex> lock(m_Mutex);
  --m_Running;
}

int SendVoiceCommand(std::uint8_t first, std::uint8_t second) {
  const std::uint8_t command[] = {first, second};
  return bt_hid_send_rc_command(nullptr, command, sizeof command);
}

}  // namespace orvex::conformance
