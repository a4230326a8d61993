// A platform for the receiver alone: a remote that takes every command, an output without delay, a dump without a
// writer. The log is left to the program.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Util/DebugDump.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/remote_voice.h"

int bt_hid_set_audio_data_receive_cb(VoiceDataCallback /*callback*/, void* /*userData*/) {
  return 0;
}
int bt_hid_unset_audio_data_receive_cb() {
  return 0;
}
int bt_hid_send_rc_command(const char* /*target*/, const std::uint8_t* /*command*/, std::size_t /*length*/) {
  return 0;
}
int bt_hid_rc_stop_sending_voice(const char* /*target*/) {
  return 0;
}
int avoc_get_delay(std::uint32_t* delayMs, int /*kind*/) {
  *delayMs = 0;
  return 0;
}
int avoc_set_delay(std::uint32_t /*delayMs*/, int /*kind*/) {
  return 0;
}
IAudioControl* IAudioControl::getInstance() {
  return nullptr;
}

// Nothing is dumped: a recording that is replayed is on disk already.
CDebugDump::CDebugDump() = default;
CDebugDump::~CDebugDump() = default;
void CDebugDump::Start() {}
void CDebugDump::Stop() {}
void CDebugDump::DebugDump(const std::string& /*text*/) {}
void CDebugDump::DebugDump(const void* /*data*/, std::size_t /*size*/) {}
