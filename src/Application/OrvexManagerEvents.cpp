// What each framework event makes the run controller do.
#include <cstdint>
#include <limits>

#include "Application/OrvexManager.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/OrvexLog.h"
#include "Util/Singleton.h"

namespace {

constexpr std::int32_t kMostRetries = 2;
constexpr double kMillisecondsPerSecond = 1000.0;

}  // namespace

void OrvexManager::OnEvent(const FwEvent& event) {
  switch (event.GetType()) {
    case ORVEX_START_SYNC:
      ORVEX_INFO("ORVEX_START_SYNC");
      m_OnStartSync();
      break;
    case ORVEX_END_SYNC:
      ORVEX_INFO("ORVEX_END_SYNC");
      m_OnEndSync();
      break;
    case ORVEX_PLAY_INAUDIBLE_SOUND:
      ORVEX_INFO("ORVEX_PLAY_INAUDIBLE_SOUND");
      if (!m_StartOrvex(ORVEX_WORKER_SOUND_PLAYER)) {
        ORVEX_FAILURE("fail to play sound");
        ui_app_exit();
      }
      break;
    case ORVEX_STOP_INAUDIBLE_SOUND:
      ORVEX_INFO("ORVEX_STOP_INAUDIBLE_SOUND");
      m_StopOrvex(ORVEX_WORKER_SOUND_PLAYER);
      break;
    case ORVEX_START_BT_RECODING:
      ORVEX_INFO("ORVEX_START_BT_RECODING");
      if (!m_StartOrvex(ORVEX_WORKER_BT_RECORDER)) {
        ORVEX_FAILURE("fail bt recoding");
        ui_app_exit();
      }
      break;
    case ORVEX_RESTART_BT_RECODING:
      ORVEX_INFO("ORVEX_RESTART_BT_RECODING");
      m_NeedToRetrySync();
      break;
    case ORVEX_FINISH_BT_RECODING:
      ORVEX_INFO("ORVEX_FINISH_BT_RECODING");
      m_StopOrvex(ORVEX_WORKER_BT_RECORDER);
      break;
    case ORVEX_EXIT:
      ORVEX_INFO("ORVEX_EXIT");
      ui_app_exit();
      break;
    default:
      ORVEX_FAILURE("other event");
      break;
  }
}

void OrvexManager::m_OnStartSync() {
  m_SendKPILogStartTime();
  m_BaseSpdifDelay = CSingleton<CAudioControl>::GetInstance()->GetSpdifOutDelay();
  m_SendOrvexEvent(ORVEX_START_BT_RECODING);
  m_SyncStartTime = m_GetCurrentTime();
}

void OrvexManager::m_OnEndSync() {
  m_StopOrvex(ORVEX_WORKER_BT_RECORDER | ORVEX_WORKER_SOUND_PLAYER);
  m_SyncSPDIFOutDelay(m_Receiver.GetAudioTimeDifference());
  CSingleton<CAudioControl>::GetInstance()->SaveCurrentStatus();
  CSingleton<CAudioControl>::GetInstance()->DumpCurrentStatus();
  CSingleton<CDebugDump>::GetInstance()->Stop();
  m_SendKPILogEndTime();
}

void OrvexManager::m_SyncSPDIFOutDelay(double diffSeconds) {
  if (diffSeconds == 0.0) {
    ORVEX_FAILURE("no_diff_detected!!\n");
    m_TerminateStatus = "diff_fail";
    return;
  }
  m_SyncResult = true;
  m_TerminateStatus = "done";
  CSingleton<CAudioControl>::GetInstance()->SetSpdifOutDelay(CorrectedDelay(m_BaseSpdifDelay, diffSeconds));
}

std::uint32_t OrvexManager::CorrectedDelay(std::uint32_t baseMs, double diffSeconds) {
  const auto correctionMs = static_cast<std::int64_t>(diffSeconds * kMillisecondsPerSecond);
  const std::int64_t delayMs = std::int64_t{baseMs} - correctionMs;
  const bool isDelay = delayMs >= 0 && delayMs <= std::numeric_limits<std::uint32_t>::max();
  return isDelay ? static_cast<std::uint32_t>(delayMs) : 0;
}

// A recorder that still runs is not stopped: the next start finds it running and leaves it alone.
void OrvexManager::m_NeedToRetrySync() {
  ORVEX_INFO("check retry");
  ++m_RetryCount;
  const std::uint32_t currentMs = CSingleton<CAudioControl>::GetInstance()->GetSpdifOutDelay();
  if (currentMs == 0 || currentMs == m_BaseSpdifDelay || m_RetryCount > kMostRetries) {
    ORVEX_FAILURE("no need to retry sync");
    m_RetryCount = 0;
    ui_app_exit();
    return;
  }
  m_BaseSpdifDelay = currentMs;
  m_SendOrvexEvent(ORVEX_START_BT_RECODING);
  m_SyncStartTime = m_GetCurrentTime();
}
