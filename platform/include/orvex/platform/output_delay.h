// Contract: the audio output delay service, and the audio control object that reports on the optical output.
//
// A positive delay makes the output's sound later. Main loop, the recorder thread and the voice delivery thread call
// here, so a port MUST allow calls from any thread.
#pragma once

#include <cstdint>

// Delay kind: the optical (S/PDIF) output, the only kind that is used.
constexpr int kDelayKindSpdif = 1;

// Results of the functions below.
constexpr int kDelayDone = 0;          // done
constexpr int kDelayUnreachable = -1;  // the service cannot be reached, or its value cannot be read
constexpr int kDelayUnknownKind = -2;  // unknown kind of delay

// Reads the delay in force, in milliseconds, 0 to 4294967295.
// kDelayDone: `*delayMs` holds it. kDelayUnreachable, kDelayUnknownKind: `*delayMs` is untouched.
int avoc_get_delay(std::uint32_t* delayMs, int kind);

// Puts a delay in force, in milliseconds. A port MAY clamp to what its hardware can do; avoc_get_delay() then tells.
// kDelayDone: in force. kDelayUnreachable, kDelayUnknownKind: nothing changed.
int avoc_set_delay(std::uint32_t delayMs, int kind);

// Results of the object's queries.
constexpr int kAudioControlDone = 0;     // done
constexpr int kAudioControlFailed = -1;  // the output cannot be asked; the target is untouched

// Diagnostic queries of the optical output. The port owns the object; it lives until the process ends.
class IAudioControl {
public:
  // The platform's object, or null when there is none. Asked afresh every time; any thread.
  static IAudioControl* getInstance();

  // The delay of the S/PDIF output in milliseconds. Results: kAudioControlDone, kAudioControlFailed.
  virtual int getSpdifOutDelay(std::uint32_t* delayMs) = 0;
  // The codec number of the S/PDIF output. Results as above.
  virtual int getSpdifOutCodec(std::int32_t* codec) = 0;

protected:
  ~IAudioControl() = default;
};
