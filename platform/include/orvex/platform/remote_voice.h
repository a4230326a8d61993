// Contract: the voice channel of the Bluetooth remote control, whose microphone hears the test sound.
//
// One recording is: register a receiver, send a start command, take blocks, unregister the receiver, end the voice.
// Registering and unregistering order what the service's threads share: the port MUST make everything that happened
// before an accepted start command visible to the delivery thread, and everything that a callback did visible to the
// thread that unregisters.
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

// Called on the port's delivery thread, one call at a time, never on the main loop. `userData` is the receiver's.
// `record` MAY be null when the port has lost a block and wants to say so: the receiver counts the block, so that the
// later ones keep their time. A block that is lost without a word makes a difference that spans it wrong by its length.
// Delivery goes on behind a lost block.
//
// A port MUST NOT hold a lock across the call that its own functions take: the callback sends commands.
//
// The callback MAY
// - send commands to the remote,
// - send events, write log records, read settings, ask for file locations,
// - read and set the output delay and query the audio control,
// - block for as long as a write to a file takes, as long as it returns within kVoiceBlockMs on average.
// The callback MUST NOT
// - unregister its receiver: the unregister waits for the callback,
// - end the remote's voice,
// - call what a header allows on the main loop only,
// - wait for the main loop, which may be waiting in the unregister for the callback to return,
// - keep the record or its bytes after it has returned,
// - throw.
using VoiceDataCallback = void (*)(const VoiceData* record, void* userData);

// Results of the functions below; each function names those that it can give.

// The receiver is registered or unregistered, or the remote has taken the command.
constexpr int kVoiceDone = 0;
// The remote refuses the command, or the port cannot serve it. Asking again does not help.
constexpr int kVoiceRefused = -5;
// Another receiver is registered. It stays the one.
constexpr int kVoiceTaken = -16;
// No remote is connected, or there is no voice service.
constexpr int kVoiceNoRemote = -19;
// Nothing is registered, or the command or its length is unknown.
constexpr int kVoiceInvalid = -22;
// The remote is busy with an earlier command. Only for a state that passes: the service asks up to five times, 50 ms
// apart, after this result and after no other.
constexpr int kVoiceInProgress = -115;

// Registers the one receiver of audio data. Any thread. The callback MAY run before the call returns, though a port
// that delivers only after a start command has nothing to deliver yet. `userData` MUST live until the unregister
// returned. A refused start command leaves the receiver registered.
// Results: kVoiceDone, kVoiceTaken, kVoiceNoRemote.
int bt_hid_set_audio_data_receive_cb(VoiceDataCallback callback, void* userData);

// Unregisters it. Any thread but the delivery thread. MUST return only when no callback is running and none will start;
// blocks that the remote still sends are dropped.
// Results: kVoiceDone, kVoiceInvalid, kVoiceNoRemote; whatever the result, no callback runs on.
int bt_hid_unset_audio_data_receive_cb();

// Sends a command to the remote. `target` names it, null: the connected one. The port copies `command`. Any thread, the
// delivery thread included; MAY block for some milliseconds.
//
// Commands, 2 bytes each:
// - 05 00: start voice for the inaudible test
// - 04 00: start voice for the audible setting
// - 03 10: go on recording
//
// A started remote sends blocks until it is stopped or its voice window ends without a "go on", no faster than
// kVoiceRateHz. The service sends "go on" every 250 blocks, 4.1 s. A start command that was not accepted makes the
// remote send nothing, and MAY be sent again. Results: kVoiceDone, kVoiceInProgress, kVoiceRefused, kVoiceNoRemote,
// kVoiceInvalid.
int bt_hid_send_rc_command(const char* target, const std::uint8_t* command, std::size_t length);

// Ends the remote's voice. `target` as above. Any thread but the delivery thread.
// Results: kVoiceDone (stopped, or was not sending; at most a block that was under way is still delivered),
// kVoiceInProgress, kVoiceRefused, kVoiceNoRemote.
int bt_hid_rc_stop_sending_voice(const char* target);
