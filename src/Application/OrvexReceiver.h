// Records through the remote control's microphone and finds the two tones of the test sound in what it hears.
#pragma once

#include <atomic>
#include <cstdint>

#include "Application/OrvexDetector.h"
#include "Application/OrvexReceiverObserver.h"
#include "orvex/platform/remote_voice.h"

// What the receiver reports to its owner, each with `context` as the only argument, on the voice delivery thread. A
// null callback is skipped.
struct OrvexReceiverCallbacks {
  using Callback = void (*)(void* context);

  Callback endCalculation = nullptr;   // a difference was computed
  Callback endAmbientNoise = nullptr;  // the ambient level is known
  Callback abnormalStatus = nullptr;   // too many noisy detections
  void* context = nullptr;
};

// The stream is taken as kVoiceRateHz samples per second in blocks of kVoiceBlockSamples. A tone is found in a block
// when its magnitude stands kToneThreshold times above its ambient mean and kNeighbourThreshold times above the mean of
// the two neighbour frequencies; OrvexDetector.h has these limits and the arithmetic. One buffer lasts 16.5 ms, which
// is the resolution of the result.
//
// Threads: StartBTRecoder() on the recorder thread, StopBTRecoder() on the main loop after the recorder thread has
// ended; blocks arrive on the voice delivery thread. The state and the result are atomics; everything else belongs to
// the delivery thread between an accepted start and a stop, and registering and unregistering order the rest.
class OrvexReceiver {
public:
  // `callbacks` are installed by each start; its context lives as long as the receiver.
  explicit OrvexReceiver(const OrvexReceiverCallbacks& callbacks) : m_OwnerCallbacks(callbacks) {}
  // A remote that still sends is stopped.
  ~OrvexReceiver();
  OrvexReceiver(const OrvexReceiver&) = delete;
  OrvexReceiver& operator=(const OrvexReceiver&) = delete;

  // Switches the remote's microphone on; IsRecording() tells whether it is. May take up to 0.2 s.
  void StartBTRecoder();
  // Switches it off; blocks that are still under way are ignored. May take up to 0.2 s.
  void StopBTRecoder();
  bool IsRecording() const { return m_State == kRecording; }

  // The measured difference in seconds, arrival of 19 kHz minus arrival of 17 kHz; 0.0 when none was found.
  double GetAudioTimeDifference();

  // true: only report progress for the audible setting, look for no tone. Takes effect with the next block; starts
  // false.
  void SetHearable(bool hearable) { m_SoundMode = hearable ? kHearableSet : kDetection; }
  // true: accept no further second tone in this recording, so that its first result stands. Cleared by a start. Any
  // thread; from the end-of-calculation callback it holds for the blocks that follow.
  void SetFinished(bool finished) { m_Finished = finished ? 1 : 0; }

  // Sets the observer, which must outlive its use; null, the initial value, for none. Not while recording.
  void SetObserver(OrvexReceiverObserver* observer) { m_Observer = observer; }

  // Progress: 1 after the ambient phase or a first tone, 2 in the audible setting at buffer 25, 0 before and after
  // abnormal input. Delivery thread, or any thread while not recording; as the following ones.
  std::int32_t GetSoundType() const { return m_SoundType; }
  // Number of the last block, from 1; starts again at 1 after 100000.
  std::int32_t GetBufferCount() const { return m_BufferCount; }
  // Blocks analysed so far.
  std::int32_t GetBlockIndex() const { return m_BlockIndex; }
  // 0 no first tone yet, 1 the 17 kHz tone came first, -1 the 19 kHz tone came first.
  std::int32_t GetDirection() const { return m_Direction; }
  // Detections that were rejected as noisy.
  std::int32_t GetNoiseCount() const { return m_NoiseCount; }

  // The receiver's audio-data callback; `userData` is the receiver. Public for those who feed recordings to it.
  static void m_ReceiveBTAudioDataCB(const VoiceData* record, void* userData);

private:
  static_assert(std::atomic<std::int32_t>::is_always_lock_free && std::atomic<double>::is_always_lock_free);

  using Block = orvex::detector::Block;
  using Tone = orvex::detector::Tone;
  using ToneMagnitudes = orvex::detector::ToneMagnitudes;

  enum State : std::int32_t { kReady = 1, kRecording = 2 };
  enum SoundMode : std::int32_t { kDetection = 0, kHearableSet = 1 };
  enum Direction : std::int32_t { kReverse = -1, kNone = 0, kForward = 1 };

  void m_ResetRecording();
  void m_InstallCallbacks();
  int m_SendStartCommand();
  int m_StopVoice();
  void m_ReceiveBlock(const VoiceData* record);
  void m_CountBuffer();
  void m_SetBTExtenCount();
  void m_SyncAlgorithm(const Block& samples);
  void m_ReportHearableSet();
  void m_LearnAmbientNoise(const ToneMagnitudes& tones);
  void m_EndRecodeOfAmbientNoise();
  void m_SetParamWith17K(const ToneMagnitudes& tones);
  void m_SetParamWith19K(const ToneMagnitudes& tones);
  void m_BeginWith17K(const ToneMagnitudes& tones);
  void m_BeginWith19K(const ToneMagnitudes& tones);
  void m_StopAbnormalCalcuation();
  void m_CompleteDiffCalculation();
  void m_CallBack(OrvexReceiverCallbacks::Callback callback) const;
  orvex::detector::Levels m_AmbientLevels() const;
  // Tells the observer, when there is one, of a step.
  template <class... Parameters, class... Values>
  void m_Observe(void (OrvexReceiverObserver::*step)(Parameters...), const Values&... values) const {
    if (m_Observer != nullptr) {
      (m_Observer->*step)(values...);
    }
  }

  std::int32_t m_ExtendCount = 0;
  std::atomic<std::int32_t> m_State{kReady};
  std::int32_t m_BufferCount = 0;
  std::int32_t m_BlockIndex = 0;
  std::int32_t m_BlockTotal = 0;
  double m_Ambient17K = 0.0;  // sum, then mean, over the ambient blocks
  double m_Ambient19K = 0.0;
  double m_Ambient17K5 = 0.0;
  double m_Ambient18K = 0.0;
  std::atomic<std::int32_t> m_SoundMode{kDetection};
  std::int32_t m_NoiseCount = 0;
  std::int32_t m_SoundType = 0;
  std::int32_t m_FirstIndex = 0;
  std::int32_t m_SecondIndex = 0;
  std::atomic<std::int32_t> m_Finished{0};
  double m_Peak17K = 0.0;  // level that a second tone must reach
  double m_Peak19K = 0.0;
  std::atomic<double> m_DiffTime{0.0};
  std::int32_t m_Direction = kNone;
  [[maybe_unused]] std::int32_t m_Spare = 0;
  OrvexReceiverCallbacks::Callback m_EndCalculationCallback = nullptr;
  OrvexReceiverCallbacks::Callback m_EndAmbientNoiseCallback = nullptr;
  OrvexReceiverCallbacks::Callback m_AbnormalStatusCallback = nullptr;
  void* m_CallbackContext = nullptr;
  const OrvexReceiverCallbacks m_OwnerCallbacks;  // what a start installs
  OrvexReceiverObserver* m_Observer = nullptr;
};
