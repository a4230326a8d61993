// A television in virtual time: the state behind the platform contract, ALSA, Ecore and POSIX calls of the service.
#pragma once

#include <Ecore.h>

#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "orvex/platform/application.h"
#include "orvex/platform/event_log.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/remote_voice.h"
#include "orvex/platform/settings.h"
#include "orvex/platform/tv_service.h"
#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "world/journal.h"
#include "world/pcm_device.h"
#include "world/scheduler.h"

namespace orvex::world {

// Settings that the service reads or is told of.
constexpr char kOpticalFlagKey[] = "db/device-detector-service/optical_change_flag";
constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";

// Results that calls give instead of doing their work, by the name of the function.
class Answers {
public:
  // The next calls give these results, in this order; later calls do their work.
  void Next(const std::string& function, const std::vector<long>& results);
  // All calls give this result, once those of Next() are used up.
  void Always(const std::string& function, long result) { m_Always[function] = result; }
  // The call with this number gives this result; 1 is the first call in this world. Comes before Next() and Always().
  void OnCall(const std::string& function, int number, long result) { m_OnCall[function][number] = result; }
  // How often the function was called.
  int Calls(const std::string& function) const;
  // The result that this call is to give; empty: it does its work.
  std::optional<long> Take(const std::string& function);

private:
  std::map<std::string, std::deque<long>> m_Next;
  std::map<std::string, long> m_Always;
  std::map<std::string, std::map<int, long>> m_OnCall;
  std::map<std::string, int> m_Calls;
};

struct Subscription {
  std::string key;
  SettingsChangedCallback callback;
  void* userData;
};

struct PoolJob {
  Ecore_Thread_Cb body;
  Ecore_Thread_Cb end;
  Ecore_Thread_Cb cancel;
};

struct EventRecord {
  std::string service, event, category, value;
};

// One at a time; the functions of the port act on the one that exists. Without one, POSIX calls go to the system.
class World {
public:
  World();
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  static World& Current();
  static World* CurrentOrNull();

  // Runs the application's create step; its events are delivered as time advances.
  void Create(FwEflApplication& application);
  // Lets time pass. When the main loop was asked to end, the destroy step runs and the pool's workers end.
  void AdvanceMs(double milliseconds);
  // Lets time pass until the process would have ended, at most 60 s. False when it would not.
  bool RunToEnd();
  bool HasEnded() const { return m_Ended; }
  // Time from Create() to the end of the process, in ms.
  double EndedAtMs() const;
  void RequestEnd() { m_EndRequested = true; }
  bool IsEnding() const { return m_EndRequested; }

  // Adds a platform call on the running thread to the journal.
  void Call(const std::string& text);
  // The result of a platform call, which it adds to the journal: the one that `answers` has for `function`, else
  // `usual`. `work` is what a call with result 0 does.
  int Answer(
      const char* function, const std::string& arguments, int usual, const std::function<void()>& work = [] {});
  // Runs right after each call was added to the journal, on the same thread.
  std::function<void(const std::string& text)> onCall;

  // Things that happen on the television.
  void Inject(std::int32_t eventType);
  void ChangeSetting(const std::string& key, int value);  // and tells the subscribers, on the main loop
  void NotifySetting(const std::string& key, const char* name);
  // Ecore's timers that run are due now.
  void RingTimers();
  FwMessage SendMessage(const FwMessage& message, FwMessage reply);
  // Whether the remote's delivery thread is a thread that can be held back. Otherwise the running thread delivers under
  // its name, which is faster.
  bool hasDeliveryThread = false;
  // The remote delivers a block, now, on its delivery thread; false when nobody receives it.
  bool Deliver(const VoiceData* record);
  bool Deliver(const std::vector<std::int16_t>& samples);
  // From now on the sound is played into this room, and the remote hears it. Mute and delay of this moment hold there
  // until the service changes them.
  void UseRoom(const sim::RoomConfig& config);

  Scheduler scheduler;
  Journal journal;
  Answers answers;

  std::map<std::string, int> settings{{kOpticalFlagKey, 0}, {kConsentKey, 0}};
  std::vector<Subscription> subscriptions;
  bool muted = false;
  std::int32_t volume = 15;
  std::int32_t speaker = 0;
  std::uint32_t delayMs = 100;
  bool hasAudioControl = true;
  std::int32_t codec = 2;
  std::optional<std::string> brand = "acme";
  std::int32_t deviceType = 3;
  std::int32_t resolution = 7;
  std::int32_t frequency = 60;
  std::int32_t source = 5;
  bool hasEventLog = true;
  std::vector<EventRecord> events;
  // Where the test sound's fixed path leads.
  std::string soundFile;
  // Wall clock at virtual time 0, microseconds since 1970.
  std::int64_t wallClockUs = 1'700'000'000'000'000;

  // Used by the port's functions.
  bool SendEventFromService(const FwEvent& event);
  bool isWatched = false;
  bool consumesEvents = false;  // the framework's own share takes every event
  VoiceDataCallback voiceCallback = nullptr;
  void* voiceUserData = nullptr;
  bool voiceCallbackRuns = false;
  bool voiceSending = false;
  void StartVoice();
  void ExtendVoice();
  void StopVoice();
  std::unique_ptr<sim::Room> room;
  std::unique_ptr<PcmDevice> pcm;  // of the open device
  PcmDevice::Limits pcmLimits;
  std::vector<std::int16_t> samplesTaken;  // by sound devices, left and right in turn, played or not
  std::vector<PoolJob> poolJobs;           // all that were started
  int runningWorkers = 0;
  int openAlarms = 0;
  FwEventIO* alarmInput = nullptr;  // of the alarm that was made last
  void* alarmUserData = nullptr;
  int openTimers = 0;
  std::map<void*, std::shared_ptr<void>> timers;
  std::set<void*> openBlocks;      // memory that the service asked for and may be refused
  std::set<std::FILE*> openFiles;  // that the service opened by descriptor

private:
  void AfterItem();
  void ScheduleDelivery();
  bool DeliverBy(const std::function<void(VoiceDataCallback callback, void* userData)>& delivery);

  FwEflApplication* m_Application = nullptr;
  bool m_EndRequested = false;
  bool m_Destroyed = false;
  bool m_Ended = false;
  Time m_CreatedAt{0};
  Time m_EndedAt{0};
  std::unique_ptr<sim::VoiceChannel> m_Voice;
  std::optional<Scheduler::Id> m_NextDelivery;
  Time m_CallsSince{0};
  int m_CallsAtOnce = 0;
};

// "name" or null as a text, for the journal.
std::string Quoted(const char* text);

}  // namespace orvex::world
