// A remote that takes every command and sends nothing.
#include "orvex/platform/remote_voice.h"

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback /*callback*/, void* /*userData*/) {
  return kVoiceDone;
}
int bt_hid_unset_audio_data_receive_cb() {
  return kVoiceDone;
}
int bt_hid_send_rc_command(const char* /*target*/, const std::uint8_t* /*command*/, std::size_t /*length*/) {
  return kVoiceDone;
}
int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  return kVoiceDone;
}
