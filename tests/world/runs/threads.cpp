// The threads by the names of the functions.
#include "world/runs/threads.h"

#include <sstream>
#include <unordered_map>
#include <vector>

namespace orvex::runs {

namespace {

struct Functions {
  std::string_view threads;
  const char* names;
};

using ThreadsByName = std::unordered_map<std::string, std::string_view>;

ThreadsByName ByName(const std::vector<Functions>& rows) {
  ThreadsByName threads;
  for (const Functions& row : rows) {
    std::istringstream names(row.names);
    for (std::string name; names >> name;) {
      threads[name] = row.threads;
    }
  }
  return threads;
}

}  // namespace

std::string_view ThreadsThatLogIn(const std::string& function) {
  static const ThreadsByName kThreads = ByName({
      {"r", "m_StartBTRecorderThread StartBTRecoder m_SendStartCommand Start"},
      {"d",
       "m_ReceiveBTAudioDataCB m_ReceiveBlock m_SetBTExtenCount m_SyncAlgorithm m_ReportHearableSet"
       " m_EndRecodeOfAmbientNoise m_SetParamWith17K m_BeginWith17K m_SetParamWith19K m_BeginWith19K"
       " m_CompleteDiffCalculation m_StopAbnormalCalcuation"
       " m_OnEndAmientNoiseCallback m_OnEndCalculationDiffCallback m_OnAbnomalStatusCallback"},
      {"w", "m_StartPlayCB m_PlayWave m_LoadWaveFile Play m_Play m_WriteFrames m_HandleWriteError m_Recover"},
      {"mr", "SaveCurrentStatus m_PrintDebugSpdifOutDelay GetInstance"},
      {"md", "DebugDump"},
  });
  const auto listed = kThreads.find(function);
  return listed == kThreads.end() ? "m" : listed->second;
}

std::string_view ThreadsThatCall(const std::string& function) {
  static const ThreadsByName kThreads = ByName({
      {"m",
       "FwEflApplication FwAlarm::Create FwAlarm::SetAlarmCallback FwAlarm::Destroy ~FwAlarm ui_app_exit"
       " watchdog_register settings_get_int settings_subscribe settings_unsubscribe"
       " sound_manager_get_device_mute sound_manager_set_device_mute sound_manager_get_tv_master_volume"
       " sound_manager_set_tv_master_volume sound_manager_get_speaker_selection avoc_set_delay getSpdifOutCodec"
       " tv_get_hdmi_input_count tv_get_activity_info_by_source tv_create_av_control getResolution"
       " tv_create_source_control getCurrentSource event_log_get_instance event_log_add_sync"
       " bt_hid_unset_audio_data_receive_cb bt_hid_rc_stop_sending_voice pthread_create pthread_join"
       " ecore_timer_add ecore_timer_del ecore_thread_run ecore_thread_cancel snd_pcm_open snd_pcm_close"
       " snd_pcm_frames_to_bytes snd_pcm_hw_params snd_pcm_hw_params_any snd_pcm_hw_params_set_access"
       " snd_pcm_hw_params_set_format snd_pcm_hw_params_set_channels snd_pcm_hw_params_set_rate"
       " snd_pcm_hw_params_set_buffer_time_near snd_pcm_hw_params_set_period_time_near"
       " snd_pcm_hw_params_get_buffer_size snd_pcm_hw_params_get_period_size snd_pcm_sw_params"
       " snd_pcm_sw_params_current snd_pcm_sw_params_set_avail_min snd_pcm_sw_params_set_start_threshold"
       " snd_pcm_sw_params_set_stop_threshold"},
      {"r", "bt_hid_set_audio_data_receive_cb"},
      {"w", "file_location sleep snd_pcm_prepare snd_pcm_writei snd_pcm_wait snd_pcm_resume snd_pcm_recover"},
      {"mr", "avoc_get_delay IAudioControl::getInstance getSpdifOutDelay usleep"},
      {"mw", "snd_pcm_drop"},
      {"rd", "bt_hid_send_rc_command"},
      {"mrd", "SendEvent"},
  });
  const auto listed = kThreads.find(function);
  return listed == kThreads.end() ? "" : listed->second;
}

}  // namespace orvex::runs
