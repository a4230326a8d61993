// What goes to the two outputs: the programme, the test sound, and the delay in front of one of them.
#pragma once

#include <atomic>
#include <cstdint>

#include "delay/delay_line.h"
#include "pipewire/client/filter_node.h"

namespace orvex::tools {

class OutputMix : public pipewire::SoundProcessor {
public:
  // Ports in the order of a cycle's.
  enum Input { kProgrammeLeft, kProgrammeRight, kTestLeft, kTestRight };
  enum Output { kReferenceLeft, kReferenceRight, kDelayedLeft, kDelayedRight };

  explicit OutputMix(double delayMs);

  // From any thread; lies in the allowed range.
  void SetDelayMs(double delayMs);

  // Reference output = programme + left test channel. Delayed output = programme + right test channel, later.
  void OnCycle(const pipewire::Cycle& cycle) override;

private:
  void FollowClock(const pipewire::Cycle& cycle);
  std::int64_t LostFrames(const pipewire::Cycle& cycle) const;

  std::atomic<double> m_DelayMs;
  static_assert(std::atomic<double>::is_always_lock_free);
  DelayLine m_Line;
  std::uint32_t m_RateHz = 0;
  std::uint64_t m_NextCycleNs = 0;
  std::uint32_t m_Clock = 0;
  std::uint64_t m_NextPosition = 0;
};

}  // namespace orvex::tools
