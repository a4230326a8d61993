// The steps of a run as fragments of a golden journal: what the main loop and the recorder thread do. What is heard and
// played is in golden_sound_steps.cpp.
#include "world/runs/golden_steps.h"

#include <unistd.h>

#include <cmath>
#include <map>

namespace orvex::runs {

namespace {

constexpr char kConsent[] = R"(
> settings_get_int("db/menu/tessar/homedatacontrol/defaultdisclaimeragree") = 0
I0 defaultdisclaimeragree=${agreed}
)";
constexpr char kDelayRead[] = R"(
> IAudioControl::getInstance() = object
> getSpdifOutDelay() = 0
E0 spdif out delay = ${delay}
> avoc_get_delay(1) = 0
)";
constexpr char kMuteAsked[] = R"(
I0 need to restore volume. original mute value[1]
> sound_manager_get_speaker_selection() = 0
I0 current speaker [${speaker}]
)";
constexpr char kStartText[] = "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}";

}  // namespace

RunGolden::RunGolden(BlockTime deliveredAtMs, int soundFrames)
    : m_DeliveredAtMs(std::move(deliveredAtMs)), m_SoundFrames(soundFrames) {
  Set("pid", getpid());
  Set("delay", 100);
  Set("bufferUs", 102396).Set("periodUs", 25583);
  SetNewInstances("");
}

RunGolden& RunGolden::SetNewInstances(const std::string& line) {
  Set("newInstance", line);
  return *this;
}

RunGolden& RunGolden::InRealTime() {
  m_IsInRealTime = true;
  for (const char* const name : {"pid", "bufferUs", "periodUs"}) {
    Set(name, "{u}");
  }
  Set("clock", "{u}:{u}");
  return *this;
}

RunGolden& RunGolden::ProgramStart() {
  On("main").Add(R"(
> tv_get_hdmi_input_count()
> FwEflApplication("org.velta.orvex-service")
I0 SetStatusText value: ${}
I0 m_StatusStr: < > ${}
I0 SetCurrentDelayText value: -1
I0 m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295
I0 SetAudioDealyText value: -1
I0 m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295
I0 SetDiffTimeText value: -1
I0 m_DiffStr: Diff Delay Time : ${}
I0 SetElapsedTimeText value: -1
I0 m_ElapsedTimeStr: Elapsed Time : ${}
> settings_subscribe("db/menu/tessar/homedatacontrol/defaultdisclaimeragree") = 0
)");
  return *this;
}

RunGolden& RunGolden::Create(Speaker speaker) {
  On("main").Add(R"(
I0 Orvex Service Create!
> watchdog_register(120) = 0
> FwAlarm::Create(60000, forever)
> FwAlarm::SetAlarmCallback()
I0 Create
> ecore_timer_add(10.000000)
> settings_subscribe("db/device-detector-service/optical_change_flag") = 0
> sound_manager_get_device_mute(0) = 0
)");
  Add(speaker == Speaker::kAudible ? "I0 TV speaker mute status.[0]" : R"(
I0 TV speaker mute status.[1]
> sound_manager_get_tv_master_volume() = 0
I0 TV speaker volume value.[15]
> sound_manager_set_tv_master_volume(0) = 0
> sound_manager_set_device_mute(0, false) = 0
)");
  Add(R"(
> SendEvent(10000)
I0 Orvex Service Create Done
)");
  return *this;
}

RunGolden& RunGolden::StartSync(Consent consent) {
  Event(10000, "I0 ORVEX_START_SYNC").Add(R"(
> tv_get_activity_info_by_source(99)
I0 type = 3, brandName = acme
> tv_create_av_control(1, 0) = 0
> getResolution(2) = 0
I0 resolution = 7, frequency = 60
> tv_create_source_control(1, 0) = 0
> getCurrentSource() = 0
I0 source = 5
> IAudioControl::getInstance() = object
> getSpdifOutCodec() = 0
I0 type = 2
)");
  Record("ORVEXENV", "EV013", kStartText, consent);
  Add("${newInstance}");
  return ReadDelay().GrantRestart();
}

RunGolden& RunGolden::Event(int type, const std::string& line) {
  On("main").Set("type", type).Add("E0 pEvent.type ${type}").Add(line);
  return *this;
}

RunGolden& RunGolden::StartRecorder(int answer) {
  Event(10004, "I0 ORVEX_START_BT_RECODING").Set("answer", answer).Add(R"(
I0 Start Orvex[1]
I0 start BT Recoder
> pthread_create() = ${answer}
)");
  return *this;
}

RunGolden& RunGolden::ReadDelay() {
  Add(kDelayRead).Add("I0 avoc delay = ${delay}");
  return *this;
}

RunGolden& RunGolden::SaveDelay() {
  Add(kDelayRead).Add("E0 main out delay = 0, avoc delay = ${delay}");
  return *this;
}

RunGolden& RunGolden::RecorderAsks() {
  On("recorder").Add("I0 m_StartBT");
  return SaveDelay();
}

RunGolden& RunGolden::RecorderRuns() {
  m_RecordingMs = Now();
  RecorderAsks().Add(R"(
> bt_hid_set_audio_data_receive_cb() = 0
> bt_hid_send_rc_command(null, 05 00, 2) = 0
E0 Start bt audio recorder
${newInstance}
I0 CDebugDumpImplFile start
E0 Temp file name=[/tmp/audio_dump_${pid}_{u}][/tmp/audio_result_${pid}_{u}.csv]
)");
  return *this;
}

RunGolden& RunGolden::UntilRecording(Speaker speaker, Consent consent) {
  return ProgramStart().Create(speaker).StartSync(consent).StartRecorder().RecorderRuns();
}

RunGolden& RunGolden::ConsentChanges(Consent consent) {
  On("main").Set("agreed", consent == Consent::kGiven ? 1 : 0).Add("* consent ${agreed}");
  Add(R"(
I0 ${}
I0 ${}
)");
  Add(kConsent);
  return consent == Consent::kGiven ? Send("ORVEXENV", "EV013", kStartText)
                                    : static_cast<RunGolden&>(Add("D0 user doesn't agree default disclaimer!"));
}

RunGolden& RunGolden::StopBoth(const Workers& workers) {
  On("main").Add("I0 Stop Orvex[3]");
  return StopRecorder(workers.recorder).StopSound(workers.sound);
}

RunGolden& RunGolden::StopRecorder(Recorder recorder) {
  static const std::map<Recorder, std::string> kLines{
      {Recorder::kNotStarted, "I0 BT Recoder is not started"},
      {Recorder::kFailed, "> pthread_join()\nE2 Already ready state!!"},
      {Recorder::kRecording, R"(
> pthread_join()
> bt_hid_unset_audio_data_receive_cb() = 0
> bt_hid_rc_stop_sending_voice(null) = 0
E0 Stop bt audio
)"},
  };
  Add("I0 stop BT Recoder").Add(kLines.at(recorder));
  return *this;
}

RunGolden& RunGolden::StopSound(Sound sound) {
  static const std::map<Sound, std::string> kLines{
      {Sound::kNotStarted, "I0 Sound Player is not started"},
      {Sound::kFailed, "E2 already thread stop"},
      {Sound::kWritten, "I0 cancel_thread\n> ecore_thread_cancel()"},
      {Sound::kEnded, "I0 cancel_thread\n> ecore_thread_cancel(null)"},
  };
  Add("I0 stop Sound Player").Add(kLines.at(sound));
  return sound == Sound::kFailed ? CloseDevice() : *this;
}

RunGolden& RunGolden::AskForRestart(long delayMs) {
  Event(10005, "I0 ORVEX_RESTART_BT_RECODING").Set("delay", delayMs).Add("I0 check retry");
  return ReadDelay();
}

RunGolden& RunGolden::GrantRestart() {
  On("main").Add(R"(
> SendEvent(10004)
I0 ${clock}
)");
  m_StartedMs = Now();
  return *this;
}

RunGolden& RunGolden::AskForExit() {
  On("main").Add(R"(
I0 ${}
> SendEvent(10007)
)");
  return *this;
}

RunGolden& RunGolden::EndSync(const Workers& workers, const std::string& seconds, const EndRecord& record) {
  return Event(10001, "I0 ORVEX_END_SYNC").StopBoth(workers).ApplyDifference(seconds, record);
}

RunGolden& RunGolden::ApplyDifference(const std::string& seconds, const EndRecord& record) {
  Set("seconds", seconds).Set("delay", record.delayMs).Add(R"(I0 diff time = ${seconds}\n)");
  Add(record.terminate == "done" ? R"(
I0 delay = ${delay}
> avoc_set_delay(${delay}, 1) = 0
I0 after delay = ${delay}
)"
                                 : R"(E2 no_diff_detected!!\n)");
  SaveDelay().Add("I0 CDebugDumpImplFile Stop");
  return SendEndRecord(record);
}

RunGolden& RunGolden::Exit() {
  Event(10007, "I0 ORVEX_EXIT").Add("> ui_app_exit()");
  return *this;
}

RunGolden& RunGolden::SendEndRecord(const EndRecord& record) {
  const auto durationMs = static_cast<long>(std::floor(Now())) - static_cast<long>(std::floor(m_StartedMs));
  Set("delay", record.delayMs);
  ReadDelay().Add("I0 ${clock}");
  return Record("ORVEXSET", "EV012",
                "{result=" + record.result + ";delay=" + std::to_string(record.delayMs) + ";du=" +
                    (m_IsInRealTime ? "{u}" : std::to_string(durationMs)) + ";terminate=" + record.terminate + "}",
                record.consent);
}

RunGolden& RunGolden::Record(const std::string& event, const std::string& category, const std::string& text,
                             Consent consent) {
  Set("text", text).Set("agreed", consent == Consent::kGiven ? 1 : 0).Add("I0 text = ${text}");
  if (consent == Consent::kGiven) {
    return Send(event, category, text);
  }
  Add(kConsent);
  return *this;
}

RunGolden& RunGolden::Send(const std::string& event, const std::string& category, const std::string& text) {
  Set("text", text).Set("event", event).Set("category", category).Add(kConsent);
  Add("I0 Service[] Event[${event}] Category[${category}] Value[${text}]");
  if (!m_HasLogger) {
    Add("> event_log_get_instance() = object");
    m_HasLogger = true;
  }
  Add(R"(
> event_log_add_sync(21_remocon, ${event}, ${category}, ${text}) = 1
I0 add event log sync:1
)");
  return *this;
}

RunGolden& RunGolden::Destroy(const Destruction& destruction) {
  On("main").Add(R"(
I0 Destroy
> settings_unsubscribe("db/device-detector-service/optical_change_flag") = 0
)");
  SendEndRecord(destruction.record).StopBoth(destruction.workers);
  if (destruction.timerRuns) {
    Add("> ecore_timer_del()");
  }
  Add("I0 ${}");
  RestoreSpeaker(destruction.restored).Add(R"(
> FwAlarm::Destroy()
> ~FwAlarm()
)");
  return *this;
}

RunGolden& RunGolden::RestoreSpeaker(Restored restored) {
  if (restored == Restored::kVolumeOfSelected) {
    Set("speaker", 0).Add(kMuteAsked);
  } else if (restored == Restored::kVolumeAndMute) {
    Set("speaker", 1).Add(kMuteAsked).Add("> sound_manager_set_device_mute(0, true) = 0");
  }
  if (restored != Restored::kNothing) {
    Add(R"(
I0 original volume value[15]
> sound_manager_set_tv_master_volume(15) = 0
)");
  }
  return *this;
}

}  // namespace orvex::runs
