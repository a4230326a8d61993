// Contract: the voice channel of the Bluetooth remote control.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int kVoiceBlockSamples = 768;   // of a whole block
constexpr double kVoiceRateHz = 46545.0;  // nominal samples per second
constexpr std::size_t kVoiceBlockBytes = kVoiceBlockSamples * sizeof(std::int16_t);
constexpr double kVoiceBlockMs = kVoiceBlockSamples * 1000.0 / kVoiceRateHz;  // 16.5, nominally

// One delivered block of microphone audio: signed 16-bit little-endian samples, one channel, nominally kVoiceRateHz per
// second and kVoiceBlockSamples per block.
//
// The record and its bytes are valid during the callback only. `bytes` needs no alignment and MUST point at `byteCount`
// readable bytes. A port MAY deliver a shorter block, an odd byte count or an empty one: the receiver then takes the
// missing samples as zero, ignores a last odd byte in its analysis, and dumps exactly `byteCount` bytes.
struct VoiceData {
  std::uint16_t byteCount;
  const std::uint8_t* bytes;
};

// Called on the port's delivery thread, one call at a time, never on the main loop. `record` MAY be null when the port
// has lost a block and wants to say so. `userData` is the receiver's. The callback MUST return within the time of a
// block (16.5 ms) on average and MUST NOT unregister itself.
using VoiceDataCallback = void (*)(const VoiceData* record, void* userData);

// Results of the functions below; each function names those that it can give.
constexpr int kVoiceDone = 0;           // done
constexpr int kVoiceRefused = -5;       // the remote refuses
constexpr int kVoiceTaken = -16;        // another receiver is registered
constexpr int kVoiceNoRemote = -19;     // no remote is connected, or there is no voice service
constexpr int kVoiceInvalid = -22;      // nothing is registered, or the command or its length is unknown
constexpr int kVoiceInProgress = -115;  // the remote is busy with an earlier command; the caller may ask again

// Registers the one receiver of audio data. Any thread. The callback MAY run before the call returns, though a port
// that delivers only after a start command has nothing to deliver yet. `userData` MUST live until the unregister
// returned. Results: kVoiceDone, kVoiceTaken, kVoiceNoRemote.
int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData);

// Unregisters it. Any thread but the delivery thread. MUST return only when no callback is running and none will start.
// Results: kVoiceDone, kVoiceInvalid, kVoiceNoRemote; whatever the result, no callback runs on.
int bt_hid_unset_audio_data_receive_cb();

// Sends a command to the remote. `target` names it, null: the connected one. The port copies `command`. Any thread, the
// delivery thread included; MAY block for some milliseconds.
// Commands, 2 bytes: 05 00 start voice for the inaudible test, 04 00 start voice for the audible setting, 03 10 go on
// recording. A started remote sends blocks until it is stopped or its voice window ends without a "go on".
// Results: kVoiceDone, kVoiceInProgress, kVoiceRefused, kVoiceNoRemote, kVoiceInvalid.
int bt_hid_send_rc_command(const char* target, const std::uint8_t* command, std::size_t length);

// Ends the remote's voice. `target` as above. Any thread but the delivery thread.
// Results: kVoiceDone (stopped, or was not sending; at most a block that was under way is still delivered),
// kVoiceInProgress, kVoiceRefused, kVoiceNoRemote.
int bt_hid_rc_stop_sending_voice(const char* target);
