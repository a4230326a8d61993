// Cuts the microphone's samples into the blocks that a remote control sends, and hands them to another thread.
#pragma once

#include <array>
#include <boost/lockfree/spsc_queue.hpp>
#include <cstddef>
#include <cstdint>

#include "orvex/platform/remote_voice.h"

namespace orvex::pipewire {

struct VoiceBlock {
  std::uint64_t lostBefore = 0;  // blocks that are missing in front of this one
  std::array<std::int16_t, kVoiceBlockSamples> samples{};
};

// One thread puts samples in, another one takes blocks out. Neither waits, locks or allocates.
class BlockQueue {
public:
  // As far as the thread that takes blocks may lag behind: 2.1 s.
  static constexpr std::size_t kCapacity = 128;

  // The next samples. The number of blocks that they have completed, lost ones included.
  std::uint64_t Put(const std::int16_t* samples, std::size_t count);
  // So many samples have been lost. A block that misses one of its samples is lost as a whole.
  std::uint64_t Lose(std::uint64_t count);

  // False: no whole block is there.
  bool Take(VoiceBlock& block) { return m_Queue.pop(block); }

private:
  void End();

  VoiceBlock m_Block;
  std::size_t m_Filled = 0;
  bool m_IsTorn = false;  // samples of m_Block are missing
  boost::lockfree::spsc_queue<VoiceBlock, boost::lockfree::capacity<kCapacity>> m_Queue;
};

}  // namespace orvex::pipewire
