// One calibration run: its two workers, its state and its decisions.
#pragma once

#include <Ecore.h>
#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "Application/OrvexEventId.h"
#include "Application/OrvexReceiver.h"
#include "Application/OrvexSoundPlayer.h"
#include "UI/OrvexUI.h"
#include "Util/OrvexLogManager.h"
#include "orvex/platform/application.h"
#include "orvex/platform/settings.h"

// What m_StartOrvex() starts and, as a bit mask, what m_StopOrvex() stops.
enum OrvexWorker : int {
  ORVEX_WORKER_BT_RECORDER = 1,
  ORVEX_WORKER_SOUND_PLAYER = 2,
};

// Owned by the application object; a process performs one run. Main loop only, but for the recorder thread's body and
// the receiver's three callbacks. Those reach the main loop with events alone; the termination text is the one field
// that they share with it.
class OrvexManager {
public:
  OrvexManager();
  // A recording or a sound that is still on is stopped.
  ~OrvexManager() = default;
  OrvexManager(const OrvexManager&) = delete;
  OrvexManager& operator=(const OrvexManager&) = delete;

  // Starts the run: the running-time limit of 10.0 s, the speaker guard, the first event. `app` receives the events.
  void Create(FwEflApplication* app);
  // Ends it: reports the outcome, stops what still runs, restores the speaker.
  void Destroy();
  // Does what an event asks for.
  void OnEvent(const FwEvent& event);

  // Sends an event to the application. Any thread. Nobody receives it before Create().
  void m_SendOrvexEvent(OrvexEventId id);

  // One worker; true when it runs, also when it already did. Selector 1 is the recorder, every other one the player.
  bool m_StartOrvex(int worker);
  // The recorder first, then the player. May take as long as the remote takes to answer.
  void m_StopOrvex(int mask);

  // The speaker volume guard. A muted TV speaker is turned down to 0 and taken out of mute. Restoring mutes it again
  // unless it is the selected output, and puts its volume back; twice restores once.
  void m_PrepareVolumeCondition();
  void m_RestoreVolumeCondition();

  // The telemetry records of a run.
  void m_SendKPILogStartTime();
  void m_SendKPILogEndTime();

  // The delay in ms that brings an output into step that is late by `diffSeconds` at `baseMs`: base - difference, whole
  // milliseconds of the difference only. 0 when that is negative or needs more than 32 bits.
  static std::uint32_t CorrectedDelay(std::uint32_t baseMs, double diffSeconds);

  // Wall clock in milliseconds modulo 2^32; differences of two values are right across the wrap.
  static std::uint32_t m_GetCurrentTime();

  // How the run ended: "etc" before it did, then "done", "diff_fail", "play_fail", "bt_fail" or "abnormal_input_fail".
  // Always a literal. Any thread.
  const char* GetTerminateStatus() const { return m_TerminateStatus; }
  // True once a delay has been computed and applied in this process.
  bool GetSyncResult() const { return m_SyncResult; }
  // Wall clock at the start of the run, as m_GetCurrentTime(); 0 before it.
  std::uint32_t GetSyncStartTime() const { return m_SyncStartTime; }

  // Callbacks. `data` is the controller.
  static Eina_Bool m_OnRunningTimeEndTimerCallback(void* data);
  static void m_OnOpticalVconfCallback(const SettingsNode* node, void* data);
  static void m_OnEndAmientNoiseCallback(void* data);
  static void m_OnEndCalculationDiffCallback(void* data);
  static void m_OnAbnomalStatusCallback(void* data);
  static void m_OnEndWavPlayCallback(void* data);
  static void m_OnCancelWavPlayCallback(void* data);

private:
  static_assert(std::atomic<const char*>::is_always_lock_free);

  void m_OnStartSync();
  void m_OnEndSync();
  void m_NeedToRetrySync();
  void m_SyncSPDIFOutDelay(double diffSeconds);
  bool m_StartBTRecorder();
  bool m_StartSoundPlayer();
  void m_StopBTRecorder();
  void m_StopSoundPlayer();
  static void* m_StartBTRecorderThread(void* data);

  FwEflApplication* m_pApp = nullptr;
  OrvexReceiver m_Receiver;
  OrvexSoundPlayer m_SoundPlayer;
  pthread_t m_BTRecorderThread{};
  bool m_bBTRecorderStarted = false;
  bool m_bSoundPlayerStarted = false;
  std::uint32_t m_BaseSpdifDelay = 0;  // ms
  OrvexUI m_UI;
  std::int32_t m_RetryCount = 0;
  [[maybe_unused]] bool m_bReservedFlag = false;
  std::uint32_t m_SyncStartTime = 0;  // ms
  bool m_SavedMute = false;           // the speaker was muted and is not now
  std::int32_t m_SavedVolume = -1;    // -1: nothing saved
  Ecore_Timer* m_pRunningTimer = nullptr;
  bool m_SyncResult = false;
  std::atomic<const char*> m_TerminateStatus{"etc"};
  COrvexLogManager m_LogManager;
};
