// The remote's voice channel in virtual time.
#include "orvex/platform/remote_voice.h"

#include <array>
#include <cstdio>

#include "world/world.h"

using orvex::world::Quoted;
using orvex::world::World;

namespace {

using Command = std::array<std::uint8_t, 2>;
constexpr Command kStart{0x05, 0x00};
constexpr Command kStartAudible{0x04, 0x00};
constexpr Command kGoOn{0x03, 0x10};

bool IsKnown(const std::uint8_t* bytes, std::size_t length) {
  if (length != kGoOn.size()) {
    return false;
  }
  const Command command{bytes[0], bytes[1]};
  return command == kStart || command == kStartAudible || command == kGoOn;
}

}  // namespace

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData) {
  World& world = World::Current();
  int result = static_cast<int>(world.answers.Take("bt_hid_set_audio_data_receive_cb").value_or(kVoiceDone));
  if (result == kVoiceDone && world.voiceCallback != nullptr) {
    result = kVoiceTaken;
  }
  if (result == kVoiceDone) {
    world.voiceCallback = callback;
    world.voiceUserData = userData;
  }
  world.Call("bt_hid_set_audio_data_receive_cb() = " + std::to_string(result));
  return result;
}

int bt_hid_unset_audio_data_receive_cb() {
  World& world = World::Current();
  int result = static_cast<int>(world.answers.Take("bt_hid_unset_audio_data_receive_cb").value_or(kVoiceDone));
  if (result == kVoiceDone && world.voiceCallback == nullptr) {
    result = kVoiceInvalid;
  }
  // Whatever the answer, the receiver is called no more.
  world.voiceCallback = nullptr;
  world.voiceUserData = nullptr;
  while (world.voiceCallbackRuns && world.scheduler.CurrentThread() != "delivery") {
    world.scheduler.Sleep(std::chrono::milliseconds(1));
  }
  world.Call("bt_hid_unset_audio_data_receive_cb() = " + std::to_string(result));
  return result;
}

int bt_hid_send_rc_command(const char* target, const std::uint8_t* command, std::size_t length) {
  World& world = World::Current();
  const int known = IsKnown(command, length) ? kVoiceDone : kVoiceInvalid;
  const int result = static_cast<int>(world.answers.Take("bt_hid_send_rc_command").value_or(known));
  std::string bytes;
  for (std::size_t i = 0; i < length; ++i) {
    char text[4];
    std::snprintf(text, sizeof text, " %02x", static_cast<unsigned int>(command[i]));
    bytes += text;
  }
  world.Call("bt_hid_send_rc_command(" + Quoted(target) + "," + bytes + ", " + std::to_string(length) +
             ") = " + std::to_string(result));
  if (result == kVoiceDone && command[0] == kGoOn[0]) {
    world.ExtendVoice();
  } else if (result == kVoiceDone) {
    world.StartVoice();
  }
  return result;
}

int bt_hid_rc_stop_sending_voice(const char* target) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("bt_hid_rc_stop_sending_voice").value_or(kVoiceDone));
  world.Call("bt_hid_rc_stop_sending_voice(" + Quoted(target) + ") = " + std::to_string(result));
  if (result == kVoiceDone) {
    world.StopVoice();
  }
  return result;
}
