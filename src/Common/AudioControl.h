// Reads and writes the delay of the optical (S/PDIF) output. Nothing else in the service does.
#pragma once

#include <atomic>
#include <cstdint>

// Reached through CSingleton<CAudioControl>. All delays in milliseconds; a positive delay makes the sound later. No
// operation reports failure: a delay that cannot be read is 0.
class CAudioControl {
public:
  virtual ~CAudioControl() = default;

  // The delay in force. Main loop.
  std::uint32_t GetSpdifOutDelay();
  // Puts a delay in force. Main loop.
  void SetSpdifOutDelay(std::uint32_t delayMs);
  // Keeps the delay in force for DumpCurrentStatus(). Recorder thread and main loop.
  void SaveCurrentStatus();
  // Adds the kept delay to the results of the debug dump. Voice delivery thread and main loop.
  void DumpCurrentStatus();

private:
  static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

  static void m_PrintDebugSpdifOutDelay();
  static std::uint32_t m_ReadDelay();

  std::atomic<std::uint32_t> m_SpdifOutDelay{0};
  // Reserved in the report; nothing measures the main output.
  std::uint32_t m_MainOutDelay = 0;
};
