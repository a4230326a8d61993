// Finds the two tones in the recording, block by block, and turns their distance into seconds.
#include <cstdio>
#include <string>

#include "Application/OrvexReceiver.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/OrvexLog.h"
#include "Util/Singleton.h"

namespace {

using namespace orvex::detector;

constexpr std::int32_t kHearableFirstBuffer = 15;
constexpr std::int32_t kHearableSecondBuffer = 25;

}  // namespace

double OrvexReceiver::GetAudioTimeDifference() {
  const double seconds = m_DiffTime;
  ORVEX_INFO("diff time = %0.4f\n", seconds);
  return seconds;
}

void OrvexReceiver::m_SyncAlgorithm(const Block& samples) {
  using Wide = long double;
  const ToneMagnitudes tones = MeasureBlock(samples);
  ORVEX_INFO("%d / %Lf %Lf %Lf %Lf / %Lf %Lf / %lf %lf %lf %lf", m_BlockIndex, Wide{tones.at17000}, Wide{tones.at19000},
             Wide{tones.at17500}, Wide{tones.at18000}, Wide{tones.ratio17}, Wide{tones.ratio19}, m_Ambient17K,
             m_Ambient19K, m_Ambient17K5, m_Ambient18K);
  m_Observe(&OrvexReceiverObserver::OnBlock, m_BufferCount, tones, m_AmbientLevels());
  if (m_SoundMode == kHearableSet) {
    m_ReportHearableSet();
  } else if (m_BlockIndex > kAmbientBlocks) {
    m_SetParamWith17K(tones);
    m_SetParamWith19K(tones);
  }
  m_LearnAmbientNoise(tones);
  ++m_BlockIndex;
  ++m_BlockTotal;
}

// The sums so far, then the means.
Levels OrvexReceiver::m_AmbientLevels() const {
  return {m_Ambient17K, m_Ambient17K5, m_Ambient18K, m_Ambient19K};
}

void OrvexReceiver::m_ReportHearableSet() {
  if (m_BufferCount == kHearableFirstBuffer) {
    m_SoundType = 1;
  } else if (m_BufferCount == kHearableSecondBuffer) {
    m_SoundType = 2;
  } else {
    return;
  }
  ORVEX_INFO("(ruvo) Hearable Set - m_SoundType %d", m_SoundType);
}

void OrvexReceiver::m_LearnAmbientNoise(const ToneMagnitudes& tones) {
  if (m_BlockIndex < kAmbientBlocks) {
    m_Ambient17K += tones.at17000;
    m_Ambient19K += tones.at19000;
    m_Ambient17K5 += tones.at17500;
    m_Ambient18K += tones.at18000;
  } else if (m_BlockIndex == kAmbientBlocks) {
    m_EndRecodeOfAmbientNoise();
  }
}

void OrvexReceiver::m_EndRecodeOfAmbientNoise() {
  m_Ambient17K /= kAmbientBlocks;
  m_Ambient19K /= kAmbientBlocks;
  m_Ambient17K5 /= kAmbientBlocks;
  m_Ambient18K /= kAmbientBlocks;
  m_SoundType = 1;
  ORVEX_MILESTONE("completed ambient noise");
  m_Observe(&OrvexReceiverObserver::OnAmbientKnown, m_BufferCount, m_AmbientLevels());
  m_CallBack(m_EndAmbientNoiseCallback);
}

void OrvexReceiver::m_SetParamWith17K(const ToneMagnitudes& tones) {
  const bool found =
      tones.at17000 >= kToneThreshold * m_Ambient17K && m_Ambient17K != 0.0 && tones.at17000 > tones.at19000;
  if (!found) {
    return;
  }
  ORVEX_INFO("[%d] %0.4f s %.1Lf, %.1Lf\n", m_BufferCount, SecondsOf(m_BufferCount),
             static_cast<long double>(tones.at17000), static_cast<long double>(tones.at19000));
  if (tones.ratio17 < kNeighbourThreshold) {
    ++m_NoiseCount;
    ORVEX_INFO("###################################################");
    ORVEX_INFO("noise is high / %Lf / %d", static_cast<long double>(tones.ratio17), m_NoiseCount);
    m_Observe(&OrvexReceiverObserver::OnNoisyTone, m_BufferCount, Tone::k17000Hz, m_NoiseCount);
    if (m_NoiseCount > kNoiseLimit) {
      m_SoundType = 0;
    }
    return;
  }
  if (m_Direction == kNone) {
    m_BeginWith17K(tones);
    return;
  }
  if (m_Direction == kForward || m_Finished != 0) {
    return;
  }
  if (m_BufferCount - m_FirstIndex > kPairingSpan || tones.at17000 < m_Peak17K) {
    ORVEX_INFO("syquence error -> recheck \n");
    m_Observe(&OrvexReceiverObserver::OnSequenceError, m_BufferCount, Tone::k17000Hz, m_FirstIndex, m_Peak17K);
    m_BeginWith17K(tones);
    return;
  }
  m_SecondIndex = m_BufferCount;
  m_Peak17K = tones.at17000;
  m_DiffTime = SecondsOf(m_FirstIndex - m_BufferCount);
  ORVEX_INFO("(ruvo)   ====> @ [RESULT] [%d] - [%d] : %0.4f s\n", m_BufferCount, m_FirstIndex, m_DiffTime.load());
  m_Observe(&OrvexReceiverObserver::OnPair, m_BufferCount, Tone::k17000Hz, m_FirstIndex, m_DiffTime.load());
  m_CompleteDiffCalculation();
}

void OrvexReceiver::m_BeginWith17K(const ToneMagnitudes& tones) {
  ORVEX_INFO("  ====> @ g_first index \n");
  m_FirstIndex = m_BufferCount;
  m_Direction = kForward;
  m_SoundType = 1;
  if (tones.at19000 > m_Peak19K) {
    m_Peak19K = tones.at19000;
  }
  m_Observe(&OrvexReceiverObserver::OnFirstTone, m_BufferCount, Tone::k17000Hz, m_Peak19K);
}

void OrvexReceiver::m_SetParamWith19K(const ToneMagnitudes& tones) {
  const bool found =
      tones.at19000 > kToneThreshold * m_Ambient19K && m_Ambient19K != 0.0 && tones.at19000 > tones.at17000;
  if (!found) {
    return;
  }
  ORVEX_INFO("(ruvo_19k)[%d] %0.4f s %.1Lf, %.1Lf\n", m_BufferCount, SecondsOf(m_BufferCount),
             static_cast<long double>(tones.at17000), static_cast<long double>(tones.at19000));
  if (tones.ratio19 < kNeighbourThreshold) {
    ++m_NoiseCount;
    ORVEX_INFO("###################################################");
    ORVEX_INFO("noise value is too high/ %Lf / %d", static_cast<long double>(tones.ratio17), m_NoiseCount);
    m_Observe(&OrvexReceiverObserver::OnNoisyTone, m_BufferCount, Tone::k19000Hz, m_NoiseCount);
    if (m_NoiseCount > kNoiseLimit) {
      m_StopAbnormalCalcuation();
    }
    return;
  }
  if (m_Direction == kNone) {
    m_BeginWith19K(tones);
    return;
  }
  if (m_Direction == kReverse || m_Finished != 0) {
    return;
  }
  if (m_BufferCount - m_FirstIndex > kPairingSpan || tones.at19000 < m_Peak19K) {
    ORVEX_INFO("syquence error -> recheck \n");
    m_Observe(&OrvexReceiverObserver::OnSequenceError, m_BufferCount, Tone::k19000Hz, m_FirstIndex, m_Peak19K);
    m_BeginWith19K(tones);
    return;
  }
  m_SecondIndex = m_BufferCount;
  m_Peak19K = tones.at19000;
  m_DiffTime = SecondsOf(m_BufferCount - m_FirstIndex);
  ORVEX_INFO("@ [RESULT] [%d] - [%d] : %0.4f s\n", m_FirstIndex, m_BufferCount, m_DiffTime.load());
  m_Observe(&OrvexReceiverObserver::OnPair, m_BufferCount, Tone::k19000Hz, m_FirstIndex, m_DiffTime.load());
  m_CompleteDiffCalculation();
}

void OrvexReceiver::m_BeginWith19K(const ToneMagnitudes& tones) {
  ORVEX_INFO("@ g_first index (reverse)\n");
  m_FirstIndex = m_BufferCount;
  m_Direction = kReverse;
  m_SoundType = 1;
  if (tones.at17000 > m_Peak17K) {
    m_Peak17K = tones.at17000;
  }
  m_Observe(&OrvexReceiverObserver::OnFirstTone, m_BufferCount, Tone::k19000Hz, m_Peak17K);
}

void OrvexReceiver::m_StopAbnormalCalcuation() {
  ORVEX_FAILURE("ERROR occured. Exit service");
  m_SoundType = 0;
  ORVEX_FAILURE("by abnormal input");
  m_Observe(&OrvexReceiverObserver::OnAbnormalInput, m_BufferCount);
  m_CallBack(m_AbnormalStatusCallback);
}

void OrvexReceiver::m_CompleteDiffCalculation() {
  ORVEX_MILESTONE("completed calculation of delay");
  char text[64];
  std::snprintf(text, sizeof text, "[RESULT] [%d] - [%d] : %0.4f\n", m_FirstIndex, m_SecondIndex, m_DiffTime.load());
  CSingleton<CDebugDump>::GetInstance()->DebugDump(std::string(text));
  CSingleton<CAudioControl>::GetInstance()->DumpCurrentStatus();
  m_CallBack(m_EndCalculationCallback);
}

void OrvexReceiver::m_CallBack(OrvexReceiverCallbacks::Callback callback) const {
  if (callback != nullptr) {
    callback(m_CallbackContext);
  }
}
