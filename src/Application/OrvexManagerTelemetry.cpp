// The two telemetry records of a run: what the television was like at the start, and how the run ended.
#include <boost/lexical_cast.hpp>
#include <string>

#include "Application/OrvexManager.h"
#include "Common/AudioControl.h"
#include "Util/OrvexLog.h"
#include "Util/OrvexUtil.h"
#include "Util/Singleton.h"

namespace {

// Decimal digits; a leading "-" for negative values of signed types only.
template <class Number>
std::string Text(Number number) {
  return boost::lexical_cast<std::string>(number);
}

// `category` is the event's code, such as EV012; `event` is its name.
FwMessage Record(const char* category, const char* event, const std::string& text) {
  FwMessage message;
  message.body["category_name"] = category;
  message.body["event_name"] = event;
  message.body["value_string"] = text;
  return message;
}

}  // namespace

void OrvexManager::m_SendKPILogStartTime() {
  std::string brandName;
  std::int32_t deviceType = 0;
  OrvexUtil::GetDeviceInfo(brandName, deviceType);
  std::string videoKind;
  std::uint32_t resolution = 0;
  std::uint32_t frequency = 0;
  OrvexUtil::GetSourceInfo(videoKind, resolution, frequency);
  ESource source{};
  OrvexUtil::GetCurrentSource(source);
  std::uint32_t codec = 0;
  OrvexUtil::GetSPDIFOUTCodec(codec);

  const std::string text = "{device=" + brandName + "|" + Text(deviceType) + ";source=" + Text(source) +
                           ";videoinfo=" + videoKind + "|" + Text(resolution) + "|" + Text(frequency) +
                           ";codec=" + Text(codec) + "}";
  const FwMessage message = Record("EV013", "ORVEXENV", text);
  ORVEX_INFO("text = %s", text.c_str());
  static_cast<void>(m_LogManager.AddEventLog(message));
}

void OrvexManager::m_SendKPILogEndTime() {
  const std::uint32_t delayMs = CSingleton<CAudioControl>::GetInstance()->GetSpdifOutDelay();
  // Right across the wrap of the millisecond clock; negative when the wall clock was put back.
  const auto durationMs = static_cast<std::int32_t>(m_GetCurrentTime() - m_SyncStartTime);
  const std::string text = std::string("{result=") + (m_SyncResult ? "pass" : "fail") + ";delay=" + Text(delayMs) +
                           ";du=" + Text(durationMs) + ";terminate=" + m_TerminateStatus.load() + "}";
  const FwMessage message = Record("EV012", "ORVEXSET", text);
  ORVEX_INFO("text = %s", text.c_str());
  static_cast<void>(m_LogManager.AddEventLog(message));
}
