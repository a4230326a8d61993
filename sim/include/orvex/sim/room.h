// The television, its speakers, the room and the remote's microphone: stereo frames go in with the time at which they
// leave the playback device, microphone samples come out.
//
// Pure: no thread, no clock, no file. Calls must not overlap; a caller with several threads locks a mutex around them.
// The same room, seed and calls give the same samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "orvex/sim/room_config.h"
#include "orvex/sim/time.h"

namespace orvex::sim {

class Room {
public:
  static constexpr int kPlaybackRateHz = 48000;
  // A pause in the playback longer than this ends a stream: the next frame, silent or not, begins a new one, and the
  // optical receiver has to lock again.
  static constexpr Time kStreamPause = std::chrono::milliseconds(50);
  // Highest delay of the S/PDIF output; SetSpdifDelayMs() clamps to it.
  static constexpr double kMaxSpdifDelayMs = 10000.0;
  // How long the room remembers playback: a recording that begins later still hears the frames that left the device
  // up to this long before those of the last call of Play().
  static constexpr Time kMemory = std::chrono::seconds(60);

  explicit Room(const RoomConfig& config);  // throws RoomError as CheckRoom() does
  ~Room();
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  const RoomConfig& GetConfig() const;

  // Plays `frames` frames of left and right samples: the first leaves the device at `start`, frame i at
  // start + i/48000 s. The caller plays frames in the order of their times, and before a recording reaches them, see
  // Record(). The mute and the delay in force at the call apply to its frames.
  void Play(Time start, const std::int16_t* stereo, std::size_t frames);
  // Drops the frames that were to leave the device at or after `from`, because the device was stopped. Frames up to
  // Lookahead() after the last recorded sample may stay: the recording has used them already.
  void CutPlayback(Time from);

  // Both apply to frames that are played afterwards. Initially unmuted and 0 ms.
  void SetTvMuted(bool muted);
  void SetSpdifDelayMs(double delayMs);  // positive: later; negative or NaN counts as 0

  // Adds a sound to the microphone's noise, repeated without end, with the room's noiseFileGainDb. It replaces an
  // earlier one; without samples there is none. Full scale is 1.0. Throws std::invalid_argument for a rate outside
  // 1000 to 1000000 or a sample outside -1000 to 1000.
  void SetNoise(const std::vector<float>& samples, double rateHz);

  // Begins a recording: the microphone's sample 0 is taken at `at`, not before the end of an earlier recording.
  void StartRecording(Time at);
  // The next `count` samples of the recording. All playback that leaves the device up to
  // SampleTime(last sample) + Lookahead() must have been played; of frames that are played later, the part that these
  // samples should have heard is lost. Throws std::logic_error before the first StartRecording().
  void Record(std::int16_t* samples, std::size_t count);
  // The time at which sample `index` of the recording is taken, at the microphone's actual rate.
  Time SampleTime(std::uint64_t index) const;
  static constexpr Time Lookahead() { return std::chrono::milliseconds(5); }

private:
  class Impl;
  std::unique_ptr<Impl> m_Impl;
};

}  // namespace orvex::sim
