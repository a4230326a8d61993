// The shipped receiver without a television: recordings go in as fast as they come, what the receiver reports comes
// out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Application/OrvexReceiver.h"
#include "receiver/buffer_count.h"

namespace orvex::tools {

enum class Tone { k17000Hz, k19000Hz };
constexpr Tone kTones[] = {Tone::k17000Hz, Tone::k19000Hz};

// One analysed block, at the receiver's own precision.
struct BlockLevels {
  double at17000 = 0.0;  // magnitudes
  double at17500 = 0.0;
  double at18000 = 0.0;
  double at19000 = 0.0;
  double ratio17 = 0.0;  // to the mean of the neighbours
  double ratio19 = 0.0;
  double ambient17000 = 0.0;  // the sums so far in the ambient phase, then the means
  double ambient17500 = 0.0;
  double ambient18000 = 0.0;
  double ambient19000 = 0.0;
};

// What the receiver reports, in the order in which it happens. `buffer` is its buffer number at that moment. All
// numbers of buffers go on in a recording, also where the receiver begins again at 1.
class ReceiverListener {
public:
  virtual ~ReceiverListener() = default;
  virtual void OnBlock(std::int32_t /*buffer*/, const BlockLevels& /*levels*/) {}
  virtual void OnAmbient(std::int32_t /*buffer*/) {}
  virtual void OnFirst(std::int32_t /*buffer*/, Tone /*tone*/) {}
  virtual void OnSequence(std::int32_t /*buffer*/) {}
  virtual void OnNoisy(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*count*/) {}
  // `first` and `second` in the order of detection, `differenceS` as the receiver gives it.
  virtual void OnResult(std::int32_t /*buffer*/, std::int32_t /*first*/, std::int32_t /*second*/,
                        double /*differenceS*/) {}
  virtual void OnAbnormal(std::int32_t /*buffer*/) {}
  virtual void OnExtend(std::int32_t /*buffer*/) {}
};

// A recording receiver behind a platform that has a remote and nothing else. Any number of rigs may live, each used by
// one thread at a time.
class ReceiverRig {
public:
  // `listener` must outlive the rig. `hearable`: the audible setting, which looks for no tone.
  explicit ReceiverRig(ReceiverListener& listener, bool hearable = false);
  ~ReceiverRig();
  ReceiverRig(const ReceiverRig&) = delete;
  ReceiverRig& operator=(const ReceiverRig&) = delete;

  // Delivers a block as the remote would: signed 16-bit little-endian samples, at most 65535 bytes.
  void Deliver(const std::uint8_t* bytes, std::uint16_t byteCount);

  const OrvexReceiver& GetReceiver() const { return m_Receiver; }
  // For one who stops and starts it, too. What it does outside of Deliver() is not listened to.
  OrvexReceiver& GetReceiver() { return m_Receiver; }
  double GetDifferenceS() { return m_Receiver.GetAudioTimeDifference(); }
  // Number of the last buffer, as the listener gets it.
  std::int32_t GetBufferCount() { return m_Count.CountOn(m_Receiver.GetBufferCount()); }

private:
  ReceiverListener& m_Listener;
  OrvexReceiver m_Receiver;
  BufferCount m_Count;
};

}  // namespace orvex::tools
