// The remote control's voice stream: on, kept alive, off. Detection is in OrvexReceiverDetection.cpp.
#include "Application/OrvexReceiver.h"

#include <unistd.h>

#include <array>
#include <cstdio>

#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/OrvexLog.h"
#include "Util/Singleton.h"

namespace {

constexpr int kAttempts = 5;
constexpr useconds_t kRetryPauseUs = 50000;

// Extend command: every 5 groups of 50 buffers, 4.1 s.
constexpr std::int32_t kBuffersPerGroup = 50;
constexpr std::int32_t kGroupsPerExtend = 5;
constexpr std::int32_t kLastBuffer = 100000;

using Command = std::array<std::uint8_t, 2>;
constexpr Command kStartInaudible = {0x05, 0x00};
constexpr Command kStartHearable = {0x04, 0x00};
constexpr Command kExtend = {0x03, 0x10};

// Only a remote that is still busy is asked again.
bool MayRetry(int result, int attempt) {
  return result == kVoiceInProgress && attempt < kAttempts;
}

}  // namespace

OrvexReceiver::~OrvexReceiver() {
  StopBTRecoder();
}

void OrvexReceiver::StartBTRecoder() {
  if (m_State == kRecording) {
    ORVEX_FAILURE("Already recording in progress!!");
    return;
  }
  m_ResetRecording();
  CSingleton<CAudioControl>::GetInstance()->SaveCurrentStatus();
  if (bt_hid_set_audio_data_receive_cb(m_ReceiveBTAudioDataCB, this) != kVoiceDone) {
    ORVEX_FAILURE("[ERROR] Fail bt_hid_set_audio_data_receive_cb()");
    return;
  }
  m_InstallCallbacks();
  const int result = m_SendStartCommand();
  if (result != 0) {
    ORVEX_FAILURE("Fail to start bt audio [ret = %d]", result);
    return;
  }
  ORVEX_MILESTONE("Start bt audio recorder");
  m_State = kRecording;
  CSingleton<CDebugDump>::GetInstance()->Start();
}

void OrvexReceiver::m_ResetRecording() {
  m_ExtendCount = 0;
  m_BufferCount = 0;
  m_BlockIndex = 0;
  m_BlockTotal = 0;
  m_Ambient17K = 0.0;
  m_Ambient19K = 0.0;
  m_Ambient17K5 = 0.0;
  m_Ambient18K = 0.0;
  m_NoiseCount = 0;
  m_SoundType = 0;
  m_FirstIndex = 0;
  m_SecondIndex = 0;
  m_Finished = 0;
  m_Peak17K = 0.0;
  m_Peak19K = 0.0;
  m_DiffTime = 0.0;
  m_Direction = kNone;
  m_Spare = 0;
}

void OrvexReceiver::m_InstallCallbacks() {
  m_EndCalculationCallback = m_OwnerCallbacks.endCalculation;
  m_EndAmbientNoiseCallback = m_OwnerCallbacks.endAmbientNoise;
  m_AbnormalStatusCallback = m_OwnerCallbacks.abnormalStatus;
  m_CallbackContext = m_OwnerCallbacks.context;
}

int OrvexReceiver::m_SendStartCommand() {
  const Command& command = m_SoundMode == kHearableSet ? kStartHearable : kStartInaudible;
  for (int attempt = 1;; ++attempt) {
    const int result = bt_hid_send_rc_command(nullptr, command.data(), command.size());
    if (!MayRetry(result, attempt)) {
      return result;
    }
    ORVEX_FAILURE("Fail bt_hid_send_rc_command [ret = %d]", result);
    usleep(kRetryPauseUs);
  }
}

void OrvexReceiver::StopBTRecoder() {
  if (m_State == kReady) {
    ORVEX_FAILURE("Already ready state!!");
    return;
  }
  m_State = kReady;
  if (bt_hid_unset_audio_data_receive_cb() != kVoiceDone) {
    ORVEX_FAILURE("[ERROR] Fail bt_hid_unset_audio_data_receive_cb()");
  }
  const int result = m_StopVoice();
  if (result != 0) {
    ORVEX_FAILURE("Fail to stop bt audio [ret = %d]", result);
    return;
  }
  ORVEX_MILESTONE("Stop bt audio");
}

int OrvexReceiver::m_StopVoice() {
  for (int attempt = 1;; ++attempt) {
    const int result = bt_hid_rc_stop_sending_voice(nullptr);
    if (!MayRetry(result, attempt)) {
      return result;
    }
    ORVEX_FAILURE("Fail bt_hid_rc_stop_sending_voice() [ret = %d]", result);
    usleep(kRetryPauseUs);
  }
}

void OrvexReceiver::m_ReceiveBTAudioDataCB(const VoiceData* record, void* userData) {
  ORVEX_INFO("m_ReceiveBTAudioDataCB");
  auto* pThis = static_cast<OrvexReceiver*>(userData);
  if (pThis == nullptr) {
    ORVEX_FAILURE("THIS is null.");
    return;
  }
  if (pThis->m_State == kRecording) {
    pThis->m_ReceiveBlock(record);
  }
}

void OrvexReceiver::m_ReceiveBlock(const VoiceData* record) {
  m_CountBuffer();
  ORVEX_INFO("buffer: %d", m_BufferCount);
  if (record == nullptr) {
    ORVEX_FAILURE("voice_data is null.");
    return;
  }
  if (m_BufferCount > orvex::detector::kIgnoredBuffers) {
    m_SyncAlgorithm(orvex::detector::ReadSamples(*record));
  }
  CSingleton<CDebugDump>::GetInstance()->DebugDump(record->bytes, record->byteCount);
}

void OrvexReceiver::m_CountBuffer() {
  if (m_BufferCount == 0) {
    ++m_ExtendCount;
  } else if (m_BufferCount % kBuffersPerGroup == 0) {
    if (m_ExtendCount % kGroupsPerExtend == 0) {
      m_SetBTExtenCount();
    }
    ++m_ExtendCount;
  }
  m_BufferCount = m_BufferCount == kLastBuffer ? 1 : m_BufferCount + 1;
}

void OrvexReceiver::m_SetBTExtenCount() {
  if (bt_hid_send_rc_command(nullptr, kExtend.data(), kExtend.size()) == kVoiceDone) {
    ORVEX_INFO("[Recorder] Extend bt audio recorder");
    m_Observe(&OrvexReceiverObserver::OnExtend, m_BufferCount);
    return;
  }
  char text[2 * kExtend.size() + 1];
  std::snprintf(text, sizeof text, "%02x%02x", kExtend[0], kExtend[1]);
  ORVEX_FAILURE("Fail bt_hid_send_rc_command(NULL, %s, %zu)", text, kExtend.size());
}
