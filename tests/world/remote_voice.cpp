// The remote's voice channel in virtual time.
#include "orvex/platform/remote_voice.h"

#include <cerrno>
#include <cstdio>

#include "world.h"

using orvex::world::Quoted;
using orvex::world::World;

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData) {
  World& world = World::Current();
  int result = static_cast<int>(world.answers.Take("bt_hid_set_audio_data_receive_cb").value_or(0));
  if (result == 0 && world.voiceCallback != nullptr) {
    result = -EBUSY;
  }
  if (result == 0) {
    world.voiceCallback = callback;
    world.voiceUserData = userData;
  }
  world.Call("bt_hid_set_audio_data_receive_cb() = " + std::to_string(result));
  return result;
}

int bt_hid_unset_audio_data_receive_cb() {
  World& world = World::Current();
  int result = static_cast<int>(world.answers.Take("bt_hid_unset_audio_data_receive_cb").value_or(0));
  if (result == 0 && world.voiceCallback == nullptr) {
    result = -EINVAL;
  }
  // Whatever the answer, nothing is called any more.
  world.voiceCallback = nullptr;
  world.voiceUserData = nullptr;
  world.Call("bt_hid_unset_audio_data_receive_cb() = " + std::to_string(result));
  return result;
}

int bt_hid_send_rc_command(const char* target, const std::uint8_t* command, std::size_t length) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("bt_hid_send_rc_command").value_or(0));
  std::string bytes;
  for (std::size_t i = 0; i < length; ++i) {
    char text[4];
    std::snprintf(text, sizeof text, " %02x", static_cast<unsigned int>(command[i]));
    bytes += text;
  }
  world.Call("bt_hid_send_rc_command(" + Quoted(target) + "," + bytes + ", " + std::to_string(length) +
             ") = " + std::to_string(result));
  if (result == 0 && length == 2 && command[0] == 0x03) {
    world.ExtendVoice();
  } else if (result == 0) {
    world.StartVoice();
  }
  return result;
}

int bt_hid_rc_stop_sending_voice(const char* target) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("bt_hid_rc_stop_sending_voice").value_or(0));
  world.Call("bt_hid_rc_stop_sending_voice(" + Quoted(target) + ") = " + std::to_string(result));
  if (result == 0) {
    world.StopVoice();
  }
  return result;
}
