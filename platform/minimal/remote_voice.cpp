// No voice service, no remote.
#include "orvex/platform/remote_voice.h"

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback /*callback*/, void* /*userData*/) {
  return kVoiceNoRemote;
}

int bt_hid_unset_audio_data_receive_cb() {
  return kVoiceNoRemote;
}

int bt_hid_send_rc_command(const char* /*target*/, const std::uint8_t* /*command*/, std::size_t /*length*/) {
  return kVoiceNoRemote;
}

int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  return kVoiceNoRemote;
}
