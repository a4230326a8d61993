// Stores the played frames as stretches of sound, each with the S/PDIF delay that was in force when it was played. What
// a muted channel or a locking receiver drops is not stored.
#include "sim/src/playback.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "orvex/sim/room.h"
#include "sim/src/spdif_delay.h"
#include "sim/src/units.h"

namespace orvex::sim {
namespace {

// A shorter silence does not end a stretch: two stretches cost more than its zeros.
constexpr std::size_t kSilenceFrames = 256;
constexpr double kNsPerS = 1e9;

}  // namespace

Time DurationOfFrames(std::size_t frames) {
  return Time(std::llround(static_cast<double>(frames) * kNsPerS / Room::kPlaybackRateHz));
}

std::size_t FramesBefore(Time time) {
  const double frames = std::ceil(static_cast<double>(time.count()) * Room::kPlaybackRateHz / kNsPerS);
  return frames > 0.0 ? static_cast<std::size_t>(frames) : 0;
}

Playback::Playback(const RoomConfig& config)
    : m_OpticalMuted(config.opticalMuted), m_OpticalLock(TimeOfMs(config.opticalLockMs)) {}

void Playback::SetSpdifDelayMs(double delayMs) {
  m_SpdifDelayS = LimitSpdifDelayMs(delayMs) * 1e-3;
}

void Playback::Play(Time start, const std::int16_t* stereo, std::size_t frames) {
  if (frames == 0) {
    return;
  }
  TrackStream(start, frames);
  if (!m_TvMuted) {
    AddStretches({kTvChannel, start, 0.0, {}, 0}, stereo, 0, frames);
  }
  if (!m_OpticalMuted) {
    AddStretches({kOpticalChannel, start, m_SpdifDelayS, {}, 0}, stereo, CountLockFrames(start, frames), frames);
  }
}

void Playback::TrackStream(Time start, std::size_t frames) {
  if (!m_StreamStart || start > m_StreamEnd + Room::kStreamPause) {
    m_StreamStart = start;
  }
  m_StreamEnd = start + DurationOfFrames(frames);
}

// How many of the frames the receiver loses because it is still locking.
std::size_t Playback::CountLockFrames(Time start, std::size_t frames) const {
  return std::min(FramesBefore(*m_StreamStart + m_OpticalLock - start), frames);
}

// `stretch` carries channel, start of frame 0 and delay of all stretches of this call.
void Playback::AddStretches(Stretch stretch, const std::int16_t* stereo, std::size_t from, std::size_t frames) {
  const Time start = stretch.start;
  std::size_t lastSound = 0;
  for (std::size_t i = from; i < frames; ++i) {
    const std::int16_t sample = stereo[2 * i + stretch.channel];
    if (sample == 0) {
      continue;
    }
    if (!stretch.samples.empty() && i - lastSound > kSilenceFrames) {
      m_Stretches.push_back(stretch);
      stretch.samples.clear();
    }
    if (stretch.samples.empty()) {
      stretch.start = start + DurationOfFrames(i);
    } else {
      stretch.samples.resize(stretch.samples.size() + (i - lastSound - 1), 0);
    }
    stretch.samples.push_back(sample);
    lastSound = i;
  }
  if (!stretch.samples.empty()) {
    m_Stretches.push_back(std::move(stretch));
  }
}

void Playback::Cut(Time from) {
  for (Stretch& stretch : m_Stretches) {
    stretch.samples.resize(std::min(FramesBefore(from - stretch.start), stretch.samples.size()));
  }
  m_StreamEnd = std::min(m_StreamEnd, from);
}

}  // namespace orvex::sim
