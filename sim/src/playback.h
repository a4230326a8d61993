// What leaves the playback device: routing, mute, the optical receiver's lock, and the S/PDIF delay.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "orvex/sim/room_config.h"
#include "orvex/sim/time.h"

namespace orvex::sim {

enum Channel : std::size_t { kTvChannel = 0, kOpticalChannel = 1, kChannelCount = 2 };

// Sound on one channel between two longer silences.
struct Stretch {
  Channel channel = kTvChannel;
  Time start{};                       // when the first frame leaves the device
  double delayS = 0.0;                // of the output, on top of the path's own
  std::vector<std::int16_t> samples;  // at the playback rate
  std::size_t used = 0;               // frames that the recording has used
};

class Playback {
public:
  explicit Playback(const RoomConfig& config);

  // As in Room.
  void Play(Time start, const std::int16_t* stereo, std::size_t frames);
  void Cut(Time from);
  void SetTvMuted(bool muted) { m_TvMuted = muted; }
  void SetSpdifDelayMs(double delayMs);

  std::vector<Stretch>& GetStretches() { return m_Stretches; }

private:
  void TrackStream(Time start, std::size_t frames);
  std::size_t CountLockFrames(Time start, std::size_t frames) const;
  void AddStretches(Stretch stretch, const std::int16_t* stereo, std::size_t from, std::size_t frames);

  const bool m_OpticalMuted;
  const Time m_OpticalLock;
  bool m_TvMuted = false;
  double m_SpdifDelayS = 0.0;
  std::optional<Time> m_StreamStart;
  Time m_StreamEnd{};
  std::vector<Stretch> m_Stretches;
};

// How long `frames` frames last at the playback rate.
Time DurationOfFrames(std::size_t frames);
// How many frames begin before `time`, when the first begins at 0.
std::size_t FramesBefore(Time time);

}  // namespace orvex::sim
