// Forms each line and logs it.
#include "UI/OrvexUI.h"

#include <boost/format.hpp>

#include "Util/OrvexLog.h"

namespace {

constexpr std::int32_t kNotSet = -1;

// As printf's %u. Boost.Format goes by the type of its argument, so %u alone would print a negative number.
std::string Unsigned(std::int32_t value) {
  return (boost::format("%u") % static_cast<std::uint32_t>(value)).str();
}

std::string UnsignedIfSet(std::int32_t value) {
  return value == kNotSet ? std::string() : Unsigned(value);
}

}  // namespace

OrvexUI::OrvexUI() {
  SetStatusText("");
  SetCurrentDelayText(kNotSet);
  SetAudioDealyText(kNotSet);
  SetDiffTimeText(kNotSet);
  SetElapsedTimeText(kNotSet);
}

void OrvexUI::SetStatusText(const std::string& text) {
  ORVEX_INFO("SetStatusText value: %s", text.c_str());
  m_StatusStr = "< " + text + "> ";
  ORVEX_INFO("m_StatusStr: %s", m_StatusStr.c_str());
}

void OrvexUI::SetCurrentDelayText(std::int32_t delayMs) {
  ORVEX_INFO("SetCurrentDelayText value: %d", delayMs);
  m_CurrentSpdifStr = "SPDIF Delay Setting : " + Unsigned(delayMs);
  ORVEX_INFO("m_CurrentSpdifStr: %s", m_CurrentSpdifStr.c_str());
}

void OrvexUI::SetAudioDealyText(std::int32_t delayMs) {
  ORVEX_INFO("SetAudioDealyText value: %d", delayMs);
  m_SyncSpdifStr = "After Auto-sync Delay Setting : " + Unsigned(delayMs);
  ORVEX_INFO("m_SyncSpdifStr: %s", m_SyncSpdifStr.c_str());
}

void OrvexUI::SetDiffTimeText(std::int32_t diffMs) {
  ORVEX_INFO("SetDiffTimeText value: %d", diffMs);
  m_DiffStr = "Diff Delay Time : " + UnsignedIfSet(diffMs);
  ORVEX_INFO("m_DiffStr: %s", m_DiffStr.c_str());
}

void OrvexUI::SetElapsedTimeText(std::int32_t elapsedMs) {
  ORVEX_INFO("SetElapsedTimeText value: %d", elapsedMs);
  m_ElapsedTimeStr = "Elapsed Time : " + UnsignedIfSet(elapsedMs);
  ORVEX_INFO("m_ElapsedTimeStr: %s", m_ElapsedTimeStr.c_str());
}
