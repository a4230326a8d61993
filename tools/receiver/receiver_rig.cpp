// Starts the shipped receiver and feeds it.
#include "receiver/receiver_rig.h"

#include "receiver/null_dump.h"

namespace orvex::tools {

ReceiverRig::ReceiverRig(const std::vector<OrvexReceiverObserver*>& observers, bool hearable) : m_Buffers(observers) {
  DumpNothing();
  m_Receiver.SetObserver(&m_Buffers);
  m_Receiver.SetHearable(hearable);
  m_Receiver.StartBTRecoder();
}

void ReceiverRig::Deliver(const std::uint8_t* bytes, std::uint16_t byteCount) {
  const VoiceData record{byteCount, bytes};
  Receive(&record);
}

void ReceiverRig::Lose() {
  Receive(nullptr);
}

void ReceiverRig::Receive(const VoiceData* record) {
  if (m_Receiver.GetBufferCount() == 0) {  // it has been started
    m_Buffers.Restart();
  }
  OrvexReceiver::m_ReceiveBTAudioDataCB(record, &m_Receiver);
}

}  // namespace orvex::tools
