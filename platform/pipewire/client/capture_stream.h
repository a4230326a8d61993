// A stream that records a node as the contract wants a voice: S16, one channel, kVoiceRateHz.
#pragma once

#include <pipewire/stream.h>

#include <functional>
#include <string>

#include "pipewire/client/block_queue.h"
#include "pipewire/client/loss_meter.h"

namespace orvex::pipewire {

// Made, used and destroyed with the loop locked.
class CaptureStream {
public:
  struct Listener {
    std::function<void()> onBlocks;  // real-time thread: there are more blocks
    std::function<void()> onState;   // loop's thread: what the operations below answer may have changed
  };

  // Throws PipeWireError.
  CaptureStream(pw_core* core, const std::string& node, BlockQueue& blocks, Listener listener);
  ~CaptureStream();
  CaptureStream(const CaptureStream&) = delete;
  CaptureStream& operator=(const CaptureStream&) = delete;

  bool IsSending() const { return m_State == PW_STREAM_STATE_STREAMING; }
  // It will send nothing any more.
  bool HasEnded() const { return m_State == PW_STREAM_STATE_ERROR || m_State == PW_STREAM_STATE_UNCONNECTED; }
  // Why it has ended.
  const std::string& GetProblem() const { return m_Problem; }

private:
  void OnState(pw_stream_state state, const char* problem);
  void OnCycle();
  void TakeSamples(const spa_buffer& buffer, const pw_time& time);

  BlockQueue& m_Blocks;
  const Listener m_Listener;
  pw_stream* m_Stream = nullptr;
  spa_hook m_Hook{};
  pw_stream_state m_State = PW_STREAM_STATE_CONNECTING;
  std::string m_Problem;
  // Real-time thread. What the first cycle brings was heard before the recording began.
  bool m_HasBegun = false;
  LossMeter m_Losses{kVoiceRateHz};
};

}  // namespace orvex::pipewire
