// Contract: the audio output delay service, and the audio control object that reports on the optical output.
//
// A positive delay makes the output's sound later. Main loop, the recorder thread and the voice delivery thread call
// here, so a port MUST allow calls from any thread.
#pragma once

#include <cstdint>

// Delay kind: the optical (S/PDIF) output, the only kind that is used.
constexpr int kDelayKindSpdif = 1;

// Reads the delay in force, in milliseconds, 0 to 4294967295.
// 0: `*delayMs` holds it. Negative, `*delayMs` untouched: -1 the service cannot be reached or its value is unreadable,
// -2 unknown kind.
int avoc_get_delay(std::uint32_t* delayMs, int kind);

// Puts a delay in force, in milliseconds. A port MAY clamp to what its hardware can do; avoc_get_delay() then tells.
// 0: in force. Negative, nothing changed: -1 the service cannot be reached, -2 unknown kind.
int avoc_set_delay(std::uint32_t delayMs, int kind);

// Diagnostic queries of the optical output. The port owns the object; it lives until the process ends.
class IAudioControl {
public:
  // The platform's object, or null when there is none. Asked afresh every time; any thread.
  static IAudioControl* getInstance();

  // The delay of the S/PDIF output in milliseconds. 0: done. -1: failed, target untouched.
  virtual int getSpdifOutDelay(std::uint32_t* delayMs) = 0;
  // The codec number of the S/PDIF output. 0: done. -1: failed, target untouched.
  virtual int getSpdifOutCodec(std::int32_t* codec) = 0;

protected:
  ~IAudioControl() = default;
};
