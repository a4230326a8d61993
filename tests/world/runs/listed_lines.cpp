// Every line that the service may log and every call that it may make.
#include "world/runs/listed_lines.h"

#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "world/runs/text_pattern.h"

namespace orvex::runs {

namespace {

// Threads by their first letters: main loop, recorder, delivery, worker.
struct Listed {
  const char* pattern;
  const char* threads;
};

constexpr Listed kLines[] = {
    // application
    {"I0 Orvex Service Create!", "m"},
    {"I0 Orvex Service Create Done", "m"},
    {"E2 Failed to register Orvex Service in gravet!", "m"},
    {"D0 notify systemd...", "m"},
    {"E2 Failed to notify watchdog", "m"},
    {"E0 pEvent.type {d}", "m"},
    {"I0 IfMessageReceived called,  message Type: {s}, method: {s}", "m"},
    {"E0 UNKNOWN MESSAGE", "m"},
    {"I0 reply empty...", "m"},
    {"I0 reply not empty!", "m"},
    // events
    {"I0 ORVEX_START_SYNC", "m"},
    {"I0 ORVEX_END_SYNC", "m"},
    {"I0 ORVEX_PLAY_INAUDIBLE_SOUND", "m"},
    {"I0 ORVEX_STOP_INAUDIBLE_SOUND", "m"},
    {"I0 ORVEX_START_BT_RECODING", "m"},
    {"I0 ORVEX_RESTART_BT_RECODING", "m"},
    {"I0 ORVEX_FINISH_BT_RECODING", "m"},
    {"I0 ORVEX_EXIT", "m"},
    {"E2 other event", "m"},
    {"E2 fail bt recoding", "mr"},
    {"E2 fail to play sound", "m"},
    {"I0 check retry", "m"},
    {"E2 no need to retry sync", "m"},
    {"E2 no_diff_detected!!\n", "m"},
    // speaker guard
    {"I0 TV speaker mute status.[{u}]", "m"},
    {"I0 TV speaker volume value.[{d}]", "m"},
    {"I0 need to restore volume. original mute value[1]", "m"},
    {"I0 current speaker [{d}]", "m"},
    {"I0 original volume value[{d}]", "m"},
    // run controller
    {"I0 Create", "m"},
    {"I0 Destroy", "m"},
    {"I0 ", "mw"},
    {"E2 pThis is NULL", "m"},
    {"E2 pThis is null", "mdr"},
    {"E2 Assertion failed", "mrdw"},
    {"I0 Start Orvex[{d}]", "m"},
    {"I0 start BT Recoder", "m"},
    {"I0 BT Recoder already started", "m"},
    {"E2 pthread_create FAIL 1st!!", "m"},
    {"E0 Create Thread Success at 2nd time", "m"},
    {"E2 pthread_create FAIL 2nd!!", "m"},
    {"I0 start Sound Player", "m"},
    {"I0 Sound Player already started", "m"},
    {"E2 fail to play wave", "m"},
    {"I0 Stop Orvex[{d}]", "m"},
    {"I0 stop BT Recoder", "m"},
    {"I0 BT Recoder is not started", "m"},
    {"I0 stop Sound Player", "m"},
    {"I0 Sound Player is not started", "m"},
    {"I0 m_StartBT", "r"},
    {"I0 m_OnEndAmientNoiseCallback", "d"},
    {"I0 m_OnEndCalculationDiffCallback", "d"},
    {"I0 m_OnAbnomalStatusCallback", "d"},
    {"I0 m_OnEndWavPlayCallback", "m"},
    {"I0 m_OnCancelWavPlayCallback", "m"},
    {"I0 {u}:{u}", "m"},
    // capture
    {"E2 Already recording in progress!!", "r"},
    {"E2 [ERROR] Fail bt_hid_set_audio_data_receive_cb()", "r"},
    {"E2 Fail bt_hid_send_rc_command [ret = -115]", "r"},
    {"E0 Start bt audio recorder", "r"},
    {"E2 Fail to start bt audio [ret = {d}]", "r"},
    {"E2 Already ready state!!", "m"},
    {"E2 [ERROR] Fail bt_hid_unset_audio_data_receive_cb()", "m"},
    {"E0 Stop bt audio", "m"},
    {"E2 Fail bt_hid_rc_stop_sending_voice() [ret = -115]", "m"},
    {"E2 Fail to stop bt audio [ret = {d}]", "m"},
    {"E2 Fail bt_hid_send_rc_command(NULL, 0310, 2)", "d"},
    {"I0 [Recorder] Extend bt audio recorder", "d"},
    // detection
    {"I0 m_ReceiveBTAudioDataCB", "d"},
    {"E2 THIS is null.", "d"},
    {"I0 buffer: {u}", "d"},
    {"E2 voice_data is null.", "d"},
    {"I0 {u} / {f} {f} {f} {f} / {f} {f} / {f} {f} {f} {f}", "d"},
    {"I0 (ruvo) Hearable Set - m_SoundType {u}", "d"},
    {"E0 completed ambient noise", "d"},
    {"I0 [{u}] {f} s {f}, {f}\n", "d"},
    {"I0 (ruvo_19k)[{u}] {f} s {f}, {f}\n", "d"},
    {"I0 ###################################################", "d"},
    {"I0 noise is high / {f} / {u}", "d"},
    {"I0 noise value is too high/ {f} / {u}", "d"},
    {"I0   ====> @ g_first index \n", "d"},
    {"I0 @ g_first index (reverse)\n", "d"},
    {"I0 syquence error -> recheck \n", "d"},
    {"I0 (ruvo)   ====> @ [RESULT] [{u}] - [{u}] : {f} s\n", "d"},
    {"I0 @ [RESULT] [{u}] - [{u}] : {f} s\n", "d"},
    {"E2 ERROR occured. Exit service", "d"},
    {"E2 by abnormal input", "d"},
    {"E0 completed calculation of delay", "d"},
    {"I0 diff time = {f}\n", "m"},
    // player
    {"I0 m_PlayerThread already Started", "m"},
    {"I0 start Player ", "m"},
    {"I0 m_StartPlay", "w"},
    {"E2 audio data is not null", "w"},
    {"E2 path is null", "w"},
    {"I0 buffer length {d}", "w"},
    {"I0 m_EndPlayerCB", "m"},
    {"I0 m_CancelPlayCB", "m"},
    {"E2 already thread stop", "m"},
    {"I0 cancel_thread", "m"},
    // output device
    {"W0 alsa device alreay open", "m"},
    {"I0 snd_pcm_open hw:0,8 successed handle {p}", "m"},
    {"I0 InitHwParam ok", "m"},
    {"I0 InitSwParam ok", "m"},
    {"I0 frame size =  {d}", "m"},
    {"I0 buffer time:{u}, period time:{u}", "m"},
    {"I0 buffer size:{u}, period size:{u}", "m"},
    {"E2 snd_pcm_hw_params err: {s}", "m"},
    {"I0 period size[{d}].", "w"},
    {"E0 framesize = 4, periodsize = {d}, chunkbytes = {d}", "w"},
    {"D0 playOffset = {d}, leftLen = {d}", "w"},
    {"E2 invalid param. buf = {p} size = {d}", "w"},
    {"D0 playSize = {d}", "w"},
    {"E2 alsa device not open", "w"},
    {"E2 Prepare error: {s}", "w"},
    {"I0 pcm start writing, buf {p}, frames to write{d}.", "w"},
    {"I0 write return : {d}.", "w"},
    {"E2 write wait : read_size:{d}, cnt:{d}", "w"},
    {"E2 write error: read_size:{d}, cnt:{d}, why:{s}", "w"},
    {"E2 under run. state[{u}]", "w"},
    {"E2 write error: drop...", "w"},
    {"W0 alsa device not open", "m"},
    {"E2 snd_pcm_drop failed", "m"},
    {"I0 Done drop", "m"},
    {"E2 snd_pcm_close failed", "m"},
    {"I0 Done close", "m"},
    // output delay
    {"I0 [singleton] new instance", "mr"},
    {"E2 audio_control is null", "mr"},
    {"E0 spdif out delay = {u}", "mr"},
    {"I0 avoc delay = {u}", "m"},
    {"E0 main out delay = 0, avoc delay = {u}", "mr"},
    {"I0 delay = {u}", "m"},
    {"I0 after delay = {u}", "m"},
    // telemetry
    {"E2 (r={d}) get defaultdisclaimeragree failed", "m"},
    {"I0 defaultdisclaimeragree={d}", "m"},
    {"I0 Service[] Event[{s}] Category[{s}] Value[{s}]", "m"},
    {"E2 Get[CLogger]instance err", "m"},
    {"I0 add event log sync:{d}", "m"},
    {"E2 Could not send event log", "m"},
    {"D0 user doesn't agree default disclaimer!", "m"},
    {"I0 activity info is null", "m"},
    {"I0 type = {d}, brandName = {s}", "m"},
    {"E2 Create Resolution Control failed", "m"},
    {"I0 resolution = {d}, frequency = {d}", "m"},
    {"E2 Can not get Source Control.", "m"},
    {"E2 Can not Set Source by Source Control.", "m"},
    {"I0 source = {d}", "m"},
    {"I0 type = {d}", "m"},
    {"I0 text = {s}", "m"},
    // debug dump
    {"I0 CDebugDumpImplFile start", "r"},
    {"E0 Temp file name=[/tmp/audio_dump_{u}_{u}][/tmp/audio_result_{u}_{u}.csv]", "r"},
    {"E2 [ERROR] File not found!", "r"},
    {"I0 CDebugDumpImplFile Stop", "m"},
    {"E2 already null", "md"},
    // status texts
    {"I0 SetStatusText value: ", "m"},
    {"I0 m_StatusStr: < > ", "m"},
    {"I0 SetCurrentDelayText value: -1", "m"},
    {"I0 m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295", "m"},
    {"I0 SetAudioDealyText value: -1", "m"},
    {"I0 m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295", "m"},
    {"I0 SetDiffTimeText value: -1", "m"},
    {"I0 m_DiffStr: Diff Delay Time : ", "m"},
    {"I0 SetElapsedTimeText value: -1", "m"},
    {"I0 m_ElapsedTimeStr: Elapsed Time : ", "m"},
};

// Calls by the function's name, with the threads that the contract allows and the service uses.
const std::unordered_map<std::string_view, const char*> kCalls = {
    {"FwEflApplication", "m"},
    {"FwAlarm::Create", "m"},
    {"FwAlarm::SetAlarmCallback", "m"},
    {"FwAlarm::Destroy", "m"},
    {"~FwAlarm", "m"},
    {"SendEvent", "mrd"},
    {"ui_app_exit", "m"},
    {"watchdog_register", "m"},
    {"settings_get_int", "m"},
    {"settings_subscribe", "m"},
    {"settings_unsubscribe", "m"},
    {"sound_manager_get_device_mute", "m"},
    {"sound_manager_set_device_mute", "m"},
    {"sound_manager_get_tv_master_volume", "m"},
    {"sound_manager_set_tv_master_volume", "m"},
    {"sound_manager_get_speaker_selection", "m"},
    {"avoc_get_delay", "mr"},
    {"avoc_set_delay", "m"},
    {"IAudioControl::getInstance", "mr"},
    {"getSpdifOutDelay", "mr"},
    {"getSpdifOutCodec", "m"},
    {"tv_get_hdmi_input_count", "m"},
    {"tv_get_activity_info_by_source", "m"},
    {"tv_create_av_control", "m"},
    {"getResolution", "m"},
    {"tv_create_source_control", "m"},
    {"getCurrentSource", "m"},
    {"event_log_get_instance", "m"},
    {"event_log_add_sync", "m"},
    {"bt_hid_set_audio_data_receive_cb", "r"},
    {"bt_hid_unset_audio_data_receive_cb", "m"},
    {"bt_hid_send_rc_command", "rd"},
    {"bt_hid_rc_stop_sending_voice", "m"},
    {"file_location", "w"},
    {"pthread_create", "m"},
    {"pthread_join", "m"},
    {"usleep", "mr"},
    {"sleep", "w"},
    {"ecore_timer_add", "m"},
    {"ecore_timer_del", "m"},
    {"ecore_thread_run", "m"},
    {"ecore_thread_cancel", "m"},
    {"snd_pcm_open", "m"},
    {"snd_pcm_close", "m"},
    {"snd_pcm_drop", "mw"},
    {"snd_pcm_prepare", "w"},
    {"snd_pcm_frames_to_bytes", "m"},
    {"snd_pcm_writei", "w"},
    {"snd_pcm_wait", "w"},
    {"snd_pcm_resume", "w"},
    {"snd_pcm_recover", "w"},
    {"snd_pcm_hw_params_any", "m"},
    {"snd_pcm_hw_params_set_access", "m"},
    {"snd_pcm_hw_params_set_format", "m"},
    {"snd_pcm_hw_params_set_channels", "m"},
    {"snd_pcm_hw_params_set_rate", "m"},
    {"snd_pcm_hw_params_set_buffer_time_near", "m"},
    {"snd_pcm_hw_params_set_period_time_near", "m"},
    {"snd_pcm_hw_params_get_buffer_size", "m"},
    {"snd_pcm_hw_params_get_period_size", "m"},
    {"snd_pcm_hw_params", "m"},
    {"snd_pcm_sw_params_current", "m"},
    {"snd_pcm_sw_params_set_avail_min", "m"},
    {"snd_pcm_sw_params_set_start_threshold", "m"},
    {"snd_pcm_sw_params_set_stop_threshold", "m"},
    {"snd_pcm_sw_params", "m"},
};

struct Compiled {
  TextPattern pattern;
  std::string_view threads;
};

// By the first characters, which differ enough to leave few patterns to try.
constexpr std::size_t kKeyLength = 5;

std::string Key(const std::string& text) {
  return text.substr(0, kKeyLength);
}

const std::multimap<std::string, Compiled>& LinesByKey() {
  static const auto* const kByKey = [] {
    auto* lines = new std::multimap<std::string, Compiled>;
    for (const Listed& listed : kLines) {
      TextPattern pattern(listed.pattern);
      const std::string key = Key(pattern.Beginning());
      lines->emplace(key, Compiled{std::move(pattern), listed.threads});
    }
    return lines;
  }();
  return *kByKey;
}

const Compiled* FindLine(const std::string& text) {
  // A pattern's beginning may be shorter than the key of a line that it matches.
  for (std::size_t length = std::min(kKeyLength, text.size()); length >= 3; --length) {
    const auto range = LinesByKey().equal_range(text.substr(0, length));
    for (auto line = range.first; line != range.second; ++line) {
      if (line->second.pattern.Matches(text)) {
        return &line->second;
      }
    }
  }
  return nullptr;
}

}  // namespace

std::string Objection(const world::Entry& entry) {
  if (entry.text.compare(0, 2, "* ") == 0) {
    return "";
  }
  std::string_view threads;
  if (entry.text.compare(0, 2, "> ") == 0) {
    const std::string_view call = std::string_view(entry.text).substr(2);
    const auto found = kCalls.find(call.substr(0, call.find('(')));
    if (found == kCalls.end()) {
      return "no such call is made: " + entry.text;
    }
    threads = found->second;
  } else {
    const Compiled* line = FindLine(entry.text);
    if (line == nullptr) {
      return "no such line is logged: " + entry.text;
    }
    threads = line->threads;
  }
  return threads.find(entry.thread.front()) != std::string_view::npos
             ? ""
             : "not on the thread " + entry.thread + ": " + entry.text;
}

}  // namespace orvex::runs
