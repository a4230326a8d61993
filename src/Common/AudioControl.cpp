// Calls the delay service and logs beside it what the audio control object reports.
#include "Common/AudioControl.h"

#include <boost/format.hpp>

#include "Util/DebugDump.h"
#include "Util/OrvexLog.h"
#include "Util/Singleton.h"
#include "orvex/platform/output_delay.h"

std::uint32_t CAudioControl::GetSpdifOutDelay() {
  m_PrintDebugSpdifOutDelay();
  const std::uint32_t delayMs = m_ReadDelay();
  ORVEX_INFO("avoc delay = %u", delayMs);
  return delayMs;
}

void CAudioControl::SetSpdifOutDelay(std::uint32_t delayMs) {
  ORVEX_INFO("delay = %u", delayMs);
  static_cast<void>(avoc_set_delay(delayMs, kDelayKindSpdif));
  ORVEX_INFO("after delay = %u", delayMs);
}

void CAudioControl::SaveCurrentStatus() {
  m_PrintDebugSpdifOutDelay();
  const std::uint32_t delayMs = m_ReadDelay();
  m_SpdifOutDelay = delayMs;
  ORVEX_MILESTONE("main out delay = %u, avoc delay = %u", m_MainOutDelay, delayMs);
}

void CAudioControl::DumpCurrentStatus() {
  const boost::format line =
      boost::format("result_set_value : [main: %u], [spdif: %u]\n") % m_MainOutDelay % m_SpdifOutDelay.load();
  CSingleton<CDebugDump>::GetInstance()->DebugDump(line.str());
}

void CAudioControl::m_PrintDebugSpdifOutDelay() {
  std::uint32_t delayMs = 0;
  IAudioControl* control = IAudioControl::getInstance();
  if (control == nullptr) {
    ORVEX_FAILURE("audio_control is null");
  } else {
    static_cast<void>(control->getSpdifOutDelay(&delayMs));
  }
  ORVEX_MILESTONE("spdif out delay = %u", delayMs);
}

std::uint32_t CAudioControl::m_ReadDelay() {
  std::uint32_t delayMs = 0;
  static_cast<void>(avoc_get_delay(&delayMs, kDelayKindSpdif));
  return delayMs;
}
