// Contract: the audio output delay service, and the audio control object that reports on the optical output.
//
// A positive delay makes the output's sound later. Where a television counts the other way, the port turns the sign:
// else every correction doubles the error.
//
// Main loop, the recorder thread and the voice delivery thread call here, so a port MUST allow calls from any thread.
// The delivery thread calls while a recording goes on: a call that takes longer than a block makes blocks late.
#pragma once

#include <cstdint>

// Delay kind: the optical (S/PDIF) output, the only kind that is used.
constexpr int kDelayKindSpdif = 1;

// Results of the functions below. After a failure the target is untouched and the delay in force is the old one.

// The delay was read, or is in force.
constexpr int kDelayDone = 0;
// The service cannot be reached, its value cannot be read, or it refuses a delay that is too long for it.
constexpr int kDelayUnreachable = -1;
// `kind` is not kDelayKindSpdif.
constexpr int kDelayUnknownKind = -2;

// Reads the delay in force, in milliseconds, 0 to 4294967295. The service reads it at the start of a run and takes the
// measured difference off it.
// Results: kDelayDone (`*delayMs` holds it), kDelayUnreachable, kDelayUnknownKind.
int avoc_get_delay(std::uint32_t* delayMs, int kind);

// Puts a delay in force, in milliseconds. When the call returns kDelayDone, avoc_get_delay() MUST tell the new delay
// and not the old one. A delay that is longer than the hardware allows MAY be clamped, which avoc_get_delay() then
// tells, or refused; it MUST NOT wrap to a short one. Results: kDelayDone, kDelayUnreachable, kDelayUnknownKind.
int avoc_set_delay(std::uint32_t delayMs, int kind);

// Results of the object's queries.

// The target holds the answer.
constexpr int kAudioControlDone = 0;
// The output cannot be asked. The target is untouched.
constexpr int kAudioControlFailed = -1;

// Diagnostic queries of the optical output: what they answer is logged and sent as telemetry, and no decision depends
// on it. The port owns the object; it lives until the process ends. Any thread.
class IAudioControl {
public:
  // The platform's object, or null when there is none. The service asks afresh every time.
  static IAudioControl* getInstance();

  // The delay of the S/PDIF output in milliseconds: the one that avoc_get_delay() tells.
  // Results: kAudioControlDone, kAudioControlFailed.
  virtual int getSpdifOutDelay(std::uint32_t* delayMs) = 0;
  // The codec of the S/PDIF output, as the television numbers codecs.
  // Results: kAudioControlDone, kAudioControlFailed.
  virtual int getSpdifOutCodec(std::int32_t* codec) = 0;

protected:
  ~IAudioControl() = default;
};
