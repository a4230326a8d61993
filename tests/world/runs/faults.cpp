// What can fail around the service.
#include "world/runs/faults.h"

namespace orvex::runs {

namespace {

using Terminate = std::map<int, std::string>;

// The test sound is played for nothing, or not at all, but the worker comes to its end.
const Terminate kSilent = {{1, "diff_fail"}, {kForEver, "diff_fail"}};
// Nothing ends the run but the time limit.
const Terminate kStuck = {{1, "etc"}, {kForEver, "etc"}};
const Terminate kNoRemote = {{1, "bt_fail"}, {kForEver, "bt_fail"}};

}  // namespace

const std::vector<FailingOperation>& FailingOperations() {
  static const auto* const kOperations = new std::vector<FailingOperation>{
      // Events: to start, to record, to play, to end the sync, to exit. The last one is replaced by the time limit.
      {"SendEvent", {0}, {{1, "etc"}, {2, "etc"}, {3, "etc"}, {4, "etc"}}},
      {"FwAlarm::Create", {0}},
      {"watchdog_register", {-1}},
      {"settings_get_int", {-1, -2, -3}},
      {"settings_subscribe", {-1, -3}},
      {"settings_unsubscribe", {-1}},
      // A speaker that stays muted is not heard.
      {"sound_manager_get_device_mute", {-1, -2}, kSilent},
      {"sound_manager_set_device_mute", {-1, -2}, kSilent},
      {"sound_manager_get_tv_master_volume", {-1, -2}},
      {"sound_manager_set_tv_master_volume", {-1, -2}},
      {"sound_manager_get_speaker_selection", {-1, -2}},
      {"avoc_get_delay", {-1, -2}},
      {"avoc_set_delay", {-1, -2}},
      {"IAudioControl::getInstance", {0}},
      {"getSpdifOutDelay", {-1}},
      {"getSpdifOutCodec", {-1}},
      {"tv_get_hdmi_input_count", {-1, 0}},
      {"tv_get_activity_info_by_source", {0}},
      {"tv_create_av_control", {-1, 1}},
      {"getResolution", {-1}},
      {"tv_create_source_control", {-1, 1}},
      {"getCurrentSource", {-1}},
      {"event_log_get_instance", {0}},
      {"event_log_add_sync", {0, -1}},
      {"bt_hid_set_audio_data_receive_cb", {-16, -19}, kNoRemote},
      {"bt_hid_unset_audio_data_receive_cb", {-22, -19}},
      {"bt_hid_send_rc_command", {-115}, {{kForEver, "bt_fail"}}},
      {"bt_hid_send_rc_command", {-5, -19, -22}, kNoRemote},
      {"bt_hid_rc_stop_sending_voice", {-115, -5, -19}},
      {"snd_pcm_open", {-2, -16, -19}, {{1, "play_fail"}, {kForEver, "play_fail"}}},
      {"snd_pcm_hw_params_any", {-22}, kSilent},
      {"snd_pcm_hw_params_set_access", {-22}, kSilent},
      {"snd_pcm_hw_params_set_format", {-22}, kSilent},
      {"snd_pcm_hw_params_set_channels", {-22}, kSilent},
      {"snd_pcm_hw_params_set_rate", {-22}, kSilent},
      {"snd_pcm_hw_params_set_buffer_time_near", {-22, 1}, kSilent},
      {"snd_pcm_hw_params_set_period_time_near", {-22, 1}, kSilent},
      {"snd_pcm_hw_params_get_buffer_size", {-22}, kSilent},
      {"snd_pcm_hw_params_get_period_size", {-22}, kSilent},
      {"snd_pcm_hw_params", {-22, -16}, kSilent},
      // Without thresholds of ours the device plays with its own.
      {"snd_pcm_sw_params_current", {-22}},
      {"snd_pcm_sw_params_set_avail_min", {-22}},
      {"snd_pcm_sw_params_set_start_threshold", {-22}},
      {"snd_pcm_sw_params_set_stop_threshold", {-22}},
      {"snd_pcm_sw_params", {-22}},
      {"snd_pcm_drop", {-5, -77}},
      {"snd_pcm_close", {-5}},
      {"snd_pcm_frames_to_bytes", {-5, 0}, kSilent},
      // A chunk is lost, and with it at most one pair of tones.
      {"snd_pcm_prepare", {-5, -19}, {{kForEver, "diff_fail"}}},
      {"snd_pcm_writei", {-32, -86, -5, -77}, {{kForEver, "diff_fail"}}},
      {"snd_pcm_writei", {-11}, {{kForEver, "etc"}}},
      {"ecore_timer_add", {0}},
      {"ecore_thread_run", {0}, kStuck},
      // Tried twice; the controller's own failure has no text of its own.
      {"pthread_create", {11, 1}, {{kForEver, "etc"}}},
      {"malloc", {0}, kSilent},
      {"calloc", {0}, kSilent},
      {"fdopen", {0}},
  };
  return *kOperations;
}

}  // namespace orvex::runs
