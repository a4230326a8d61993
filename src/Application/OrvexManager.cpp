// The run controller: start and end of a run, its workers and their callbacks. Decisions are in OrvexManagerEvents.cpp.
#include "Application/OrvexManager.h"

#include <sys/time.h>
#include <unistd.h>

#include <string>

#include "Util/OrvexLog.h"

namespace {

constexpr double kRunningTimeLimitS = 10.0;
constexpr useconds_t kThreadRetryPauseUs = 100000;
constexpr char kOpticalChangeFlagKey[] = "db/device-detector-service/optical_change_flag";
constexpr char kTestSoundPath[] = "/usr/apps/com.norvel.tv.orvex-service/res/sound/LR_test_sample_17_19.wav";

}  // namespace

OrvexManager::OrvexManager()
    : m_Receiver({m_OnEndCalculationDiffCallback, m_OnEndAmientNoiseCallback, m_OnAbnomalStatusCallback, this}) {}

void OrvexManager::Create(FwEflApplication* app) {
  ORVEX_INFO("Create");
  m_pApp = app;
  m_pRunningTimer = ecore_timer_add(kRunningTimeLimitS, m_OnRunningTimeEndTimerCallback, this);
  static_cast<void>(settings_subscribe(kOpticalChangeFlagKey, m_OnOpticalVconfCallback, this));
  m_PrepareVolumeCondition();
  m_SendOrvexEvent(ORVEX_START_SYNC);
}

void OrvexManager::Destroy() {
  ORVEX_INFO("Destroy");
  static_cast<void>(settings_unsubscribe(kOpticalChangeFlagKey, m_OnOpticalVconfCallback));
  m_SendKPILogEndTime();
  m_StopOrvex(ORVEX_WORKER_BT_RECORDER | ORVEX_WORKER_SOUND_PLAYER);
  if (m_pRunningTimer != nullptr) {
    static_cast<void>(ecore_timer_del(m_pRunningTimer));
    m_pRunningTimer = nullptr;
  }
  m_RestoreVolumeCondition();
}

void OrvexManager::m_SendOrvexEvent(OrvexEventId id) {
  static_cast<void>(SendEvent(FwEvent(id, m_pApp == nullptr ? nullptr : m_pApp->GetEventReceiver())));
}

bool OrvexManager::m_StartOrvex(int worker) {
  ORVEX_INFO("Start Orvex[%d]", worker);
  return worker == ORVEX_WORKER_BT_RECORDER ? m_StartBTRecorder() : m_StartSoundPlayer();
}

bool OrvexManager::m_StartBTRecorder() {
  ORVEX_INFO("start BT Recoder");
  if (m_bBTRecorderStarted) {
    ORVEX_INFO("BT Recoder already started");
    return true;
  }
  if (pthread_create(&m_BTRecorderThread, nullptr, m_StartBTRecorderThread, this) != 0) {
    ORVEX_FAILURE("pthread_create FAIL 1st!!");
    usleep(kThreadRetryPauseUs);
    if (pthread_create(&m_BTRecorderThread, nullptr, m_StartBTRecorderThread, this) != 0) {
      ORVEX_FAILURE("pthread_create FAIL 2nd!!");
      ORVEX_FAILURE("Assertion failed");
      return false;
    }
    ORVEX_MILESTONE("Create Thread Success at 2nd time");
  }
  m_bBTRecorderStarted = true;
  return true;
}

bool OrvexManager::m_StartSoundPlayer() {
  ORVEX_INFO("start Sound Player");
  if (m_bSoundPlayerStarted) {
    ORVEX_INFO("Sound Player already started");
    return true;
  }
  m_SoundPlayer.Prepare(kTestSoundPath, m_OnEndWavPlayCallback, m_OnCancelWavPlayCallback, this);
  if (!m_SoundPlayer.PlayWave()) {
    ORVEX_FAILURE("fail to play wave");
    m_TerminateStatus = "play_fail";
    return false;
  }
  m_bSoundPlayerStarted = true;
  return true;
}

void OrvexManager::m_StopOrvex(int mask) {
  ORVEX_INFO("Stop Orvex[%d]", mask);
  if ((mask & ORVEX_WORKER_BT_RECORDER) != 0) {
    m_StopBTRecorder();
  }
  if ((mask & ORVEX_WORKER_SOUND_PLAYER) != 0) {
    m_StopSoundPlayer();
  }
}

void OrvexManager::m_StopBTRecorder() {
  ORVEX_INFO("stop BT Recoder");
  if (!m_bBTRecorderStarted) {
    ORVEX_INFO("BT Recoder is not started");
    return;
  }
  // Joined first: the thread may still be switching the microphone on.
  static_cast<void>(pthread_join(m_BTRecorderThread, nullptr));
  m_Receiver.StopBTRecoder();
  m_bBTRecorderStarted = false;
}

void OrvexManager::m_StopSoundPlayer() {
  ORVEX_INFO("stop Sound Player");
  if (!m_bSoundPlayerStarted) {
    ORVEX_INFO("Sound Player is not started");
    return;
  }
  m_SoundPlayer.StopWave();
  m_bSoundPlayerStarted = false;
}

void* OrvexManager::m_StartBTRecorderThread(void* data) {
  auto* pThis = static_cast<OrvexManager*>(data);
  ORVEX_INFO("m_StartBT");
  pThis->m_Receiver.StartBTRecoder();
  if (!pThis->m_Receiver.IsRecording()) {
    ORVEX_FAILURE("fail bt recoding");
    pThis->m_TerminateStatus = "bt_fail";
    pThis->m_SendOrvexEvent(ORVEX_EXIT);
  }
  return nullptr;
}

std::uint32_t OrvexManager::m_GetCurrentTime() {
  timeval now{};
  static_cast<void>(gettimeofday(&now, nullptr));
  ORVEX_INFO("%ld:%ld", static_cast<long>(now.tv_sec), static_cast<long>(now.tv_usec));
  return static_cast<std::uint32_t>(now.tv_sec) * 1000U + static_cast<std::uint32_t>(now.tv_usec / 1000);
}

Eina_Bool OrvexManager::m_OnRunningTimeEndTimerCallback(void* data) {
  ORVEX_INFO("");
  auto* pThis = static_cast<OrvexManager*>(data);
  if (pThis != nullptr) {
    // The return value deletes the timer; Destroy() must not delete it again.
    pThis->m_pRunningTimer = nullptr;
    pThis->m_SendOrvexEvent(ORVEX_EXIT);
  }
  return ECORE_CALLBACK_CANCEL;
}

void OrvexManager::m_OnOpticalVconfCallback(const SettingsNode* node, void* data) {
  ORVEX_INFO("");
  auto* pThis = static_cast<OrvexManager*>(data);
  if (pThis == nullptr) {
    ORVEX_FAILURE("pThis is NULL");
    return;
  }
  const std::string key(settings_node_name(node));
  if (key == kOpticalChangeFlagKey) {
    // Whoever switched the output wants to hear it: the speaker is not muted again.
    pThis->m_SavedMute = false;
    pThis->m_SendOrvexEvent(ORVEX_EXIT);
  }
}

void OrvexManager::m_OnEndAmientNoiseCallback(void* data) {
  ORVEX_INFO("m_OnEndAmientNoiseCallback");
  if (ORVEX_IS_NULL(data)) {
    return;
  }
  static_cast<OrvexManager*>(data)->m_SendOrvexEvent(ORVEX_PLAY_INAUDIBLE_SOUND);
}

void OrvexManager::m_OnEndCalculationDiffCallback(void* data) {
  ORVEX_INFO("m_OnEndCalculationDiffCallback");
  if (ORVEX_IS_NULL(data)) {
    return;
  }
  auto* pThis = static_cast<OrvexManager*>(data);
  // The main loop may be busy, and blocks go on arriving until it stops the recording: the first result stands.
  pThis->m_Receiver.SetFinished(true);
  pThis->m_SendOrvexEvent(ORVEX_END_SYNC);
  pThis->m_SendOrvexEvent(ORVEX_EXIT);
}

void OrvexManager::m_OnAbnomalStatusCallback(void* data) {
  ORVEX_INFO("m_OnAbnomalStatusCallback");
  if (ORVEX_IS_NULL(data)) {
    return;
  }
  auto* pThis = static_cast<OrvexManager*>(data);
  pThis->m_TerminateStatus = "abnormal_input_fail";
  pThis->m_SendOrvexEvent(ORVEX_EXIT);
}

void OrvexManager::m_OnEndWavPlayCallback(void* data) {
  ORVEX_INFO("m_OnEndWavPlayCallback");
  if (ORVEX_IS_NULL(data)) {
    return;
  }
  auto* pThis = static_cast<OrvexManager*>(data);
  pThis->m_SendOrvexEvent(ORVEX_END_SYNC);
  pThis->m_SendOrvexEvent(ORVEX_EXIT);
}

void OrvexManager::m_OnCancelWavPlayCallback(void* data) {
  ORVEX_INFO("m_OnCancelWavPlayCallback");
  static_cast<void>(ORVEX_IS_NULL(data));
}
