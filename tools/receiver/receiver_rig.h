// The shipped receiver without a television: recordings go in as fast as they come, observers see each step.
#pragma once

#include <cstdint>
#include <vector>

#include "Application/OrvexReceiver.h"
#include "receiver/continuous_buffers.h"

namespace orvex::tools {

using detector::Levels;
using detector::Tone;
using detector::ToneMagnitudes;

constexpr Tone kTones[] = {Tone::k17000Hz, Tone::k19000Hz};

// A recording receiver on a port that does nothing. Any number of rigs may live, each used by one thread at a time.
class ReceiverRig {
public:
  // Each of the `observers` is called at each step, in this order; they must outlive the rig. The numbers of buffers go
  // on in a recording, also where the receiver begins again at 1. `hearable`: the audible setting, which looks for no
  // tone.
  explicit ReceiverRig(const std::vector<OrvexReceiverObserver*>& observers, bool hearable = false);
  ReceiverRig(const ReceiverRig&) = delete;
  ReceiverRig& operator=(const ReceiverRig&) = delete;

  // Delivers a block as the remote would: signed 16-bit little-endian samples, at most 65535 bytes.
  void Deliver(const std::uint8_t* bytes, std::uint16_t byteCount);
  // Tells the receiver of a block that was lost.
  void Lose();

  const OrvexReceiver& GetReceiver() const { return m_Receiver; }
  // For callers that stop and start it, too.
  OrvexReceiver& GetReceiver() { return m_Receiver; }
  double GetDifferenceS() { return m_Receiver.GetAudioTimeDifference(); }
  // Number of the last buffer, as the observers get it.
  std::int32_t GetBufferCount() { return m_Buffers.CountOn(m_Receiver.GetBufferCount()); }

private:
  void Receive(const VoiceData* record);

  ContinuousBuffers m_Buffers;
  OrvexReceiver m_Receiver{OrvexReceiverCallbacks{}};
};

}  // namespace orvex::tools
