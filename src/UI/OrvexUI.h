// Five lines of text that describe a run. They go to the log and stay in memory for a later display.
#pragma once

#include <cstdint>
#include <string>

// Main loop only. Each setter replaces its line and logs the value, then the line.
class OrvexUI {
public:
  // An empty status, and -1 everywhere else.
  OrvexUI();

  void SetStatusText(const std::string& text);
  // Delays in ms, shown as unsigned numbers: -1, which nobody has set, reads 4294967295.
  void SetCurrentDelayText(std::int32_t delayMs);
  void SetAudioDealyText(std::int32_t delayMs);
  // In ms; -1 shows the label alone, other values follow it as the delays do.
  void SetDiffTimeText(std::int32_t diffMs);
  void SetElapsedTimeText(std::int32_t elapsedMs);

  const std::string& GetStatusText() const { return m_StatusStr; }
  const std::string& GetCurrentDelayText() const { return m_CurrentSpdifStr; }
  const std::string& GetAudioDealyText() const { return m_SyncSpdifStr; }
  const std::string& GetDiffTimeText() const { return m_DiffStr; }
  const std::string& GetElapsedTimeText() const { return m_ElapsedTimeStr; }

private:
  std::string m_StatusStr;
  std::string m_CurrentSpdifStr;
  std::string m_SyncSpdifStr;
  std::string m_DiffStr;
  std::string m_ElapsedTimeStr;
};
