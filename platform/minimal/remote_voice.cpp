// No voice service, no remote.
#include "orvex/platform/remote_voice.h"

namespace {

constexpr int kNotThere = -19;

}  // namespace

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback /*callback*/, void* /*userData*/) {
  return kNotThere;
}

int bt_hid_unset_audio_data_receive_cb() {
  return kNotThere;
}

int bt_hid_send_rc_command(const char* /*target*/, const std::uint8_t* /*command*/, std::size_t /*length*/) {
  return kNotThere;
}

int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  return kNotThere;
}
