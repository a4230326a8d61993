// What can fail around the service.
#include "world/runs/faults.h"

#include "orvex/platform/event_log.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/remote_voice.h"
#include "orvex/platform/settings.h"
#include "orvex/platform/sound_manager.h"
#include "orvex/platform/tv_service.h"
#include "orvex/platform/watchdog.h"

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
      {"watchdog_register", {kWatchdogFailed}},
      {"settings_get_int", {kSettingsNoKey, kSettingsNoInteger, kSettingsUnreadable}},
      {"settings_subscribe", {kSettingsAlreadySubscribed, kSettingsUnreadable}},
      {"settings_unsubscribe", {kSettingsNotSubscribed}},
      // A speaker that stays muted is not heard.
      {"sound_manager_get_device_mute", {kSoundUnreachable, kSoundOutOfRange}, kSilent},
      {"sound_manager_set_device_mute", {kSoundUnreachable, kSoundOutOfRange}, kSilent},
      {"sound_manager_get_tv_master_volume", {kSoundUnreachable, kSoundOutOfRange}},
      {"sound_manager_set_tv_master_volume", {kSoundUnreachable, kSoundOutOfRange}},
      {"sound_manager_get_speaker_selection", {kSoundUnreachable, kSoundOutOfRange}},
      {"avoc_get_delay", {kDelayUnreachable, kDelayUnknownKind}},
      {"avoc_set_delay", {kDelayUnreachable, kDelayUnknownKind}},
      {"IAudioControl::getInstance", {0}},
      {"getSpdifOutDelay", {kAudioControlFailed}},
      {"getSpdifOutCodec", {kAudioControlFailed}},
      {"tv_get_hdmi_input_count", {-1, 0}},
      {"tv_get_activity_info_by_source", {0}},
      {"tv_create_av_control", {kTvFailed, 1}},
      {"getResolution", {kTvFailed}},
      {"tv_create_source_control", {kTvFailed, 1}},
      {"getCurrentSource", {kTvFailed}},
      {"event_log_get_instance", {0}},
      {"event_log_add_sync", {kEventLogRefused, kEventLogUnreachable}},
      {"bt_hid_set_audio_data_receive_cb", {kVoiceTaken, kVoiceNoRemote}, kNoRemote},
      {"bt_hid_unset_audio_data_receive_cb", {kVoiceInvalid, kVoiceNoRemote}},
      {"bt_hid_send_rc_command", {kVoiceInProgress}, {{kForEver, "bt_fail"}}},
      {"bt_hid_send_rc_command", {kVoiceRefused, kVoiceNoRemote, kVoiceInvalid}, kNoRemote},
      {"bt_hid_rc_stop_sending_voice", {kVoiceInProgress, kVoiceRefused, kVoiceNoRemote}},
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
