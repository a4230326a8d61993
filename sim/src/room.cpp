// Puts playback, paths, rate conversion and noise together.
//
// Frames are rendered late, when a recording reaches them, so that CutPlayback() can still drop them. A piece of sound
// is converted to the microphone's rate first, without echoes, and then added once for each tap of its path: echoes and
// tail need no conversion of their own. The order does not change the result, as both steps are linear and
// time-invariant.
#include "orvex/sim/room.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "sim/src/fractional_kernel.h"
#include "sim/src/impulse_response.h"
#include "sim/src/mix_line.h"
#include "sim/src/noise_source.h"
#include "sim/src/playback.h"
#include "sim/src/random.h"
#include "sim/src/rate_converter.h"

namespace orvex::sim {
namespace {

const RoomConfig& Checked(const RoomConfig& config) {
  CheckRoom(config, "room");
  return config;
}

std::int16_t ToSample(float value) {
  return static_cast<std::int16_t>(std::lrint(std::clamp(value, -32768.0F, 32767.0F)));
}

}  // namespace

class Room::Impl {
public:
  explicit Impl(const RoomConfig& config);

  void Play(Time start, const std::int16_t* stereo, std::size_t frames);
  void StartRecording(Time at);
  void Record(std::int16_t* samples, std::size_t count);
  Time SampleTime(std::uint64_t index) const;

  const RoomConfig m_Config;
  Playback m_Playback;
  NoiseSource m_Noise;

private:
  double FirstFramePosition(const Stretch& stretch) const;
  void RenderUntil(Stretch& stretch, std::int64_t end);
  void RenderFrames(const Stretch& stretch, std::size_t first, std::size_t last);
  void FillDryBuffer(const Stretch& stretch, std::size_t first, std::size_t last, double position);
  void ForgetBefore(Time time);

  const double m_RateHz;
  const double m_FramesPerSample;
  const std::array<ImpulseResponse, kChannelCount> m_Responses;
  RateConverter m_Converter;
  const std::int64_t m_Reach;  // microphone samples over which a frame is spread to each side of its arrival
  std::optional<Time> m_RecordingStart;
  std::int64_t m_NextSample = 0;
  MixLine m_Line;
  std::vector<float> m_Dry;  // scratch, at the playback rate
  std::vector<float> m_Mix;  // scratch
};

Room::Impl::Impl(const RoomConfig& config)
    : m_Config(Checked(config)),
      m_Playback(config),
      m_Noise(config),
      m_RateHz(ActualMicrophoneRateHz(config)),
      m_FramesPerSample(kPlaybackRateHz / m_RateHz),
      m_Responses{MakeImpulseResponse(config.tv, m_RateHz, MakeRandom(config.seed, RandomUse::kTvTail)),
                  MakeImpulseResponse(config.optical, m_RateHz, MakeRandom(config.seed, RandomUse::kOpticalTail))},
      m_Converter(m_RateHz / kPlaybackRateHz),
      m_Reach(static_cast<std::int64_t>(
                  std::ceil(static_cast<double>(m_Converter.GetReach() + kKernelHalf) / m_FramesPerSample)) +
              1) {}

void Room::Impl::Play(Time start, const std::int16_t* stereo, std::size_t frames) {
  ForgetBefore(start - kMemory);
  m_Playback.Play(start, stereo, frames);
}

void Room::Impl::StartRecording(Time at) {
  m_RecordingStart = at;
  m_NextSample = 0;
  m_Line.Reset();
  for (Stretch& stretch : m_Playback.GetStretches()) {
    stretch.used = 0;
  }
}

void Room::Impl::Record(std::int16_t* samples, std::size_t count) {
  if (!m_RecordingStart) {
    throw std::logic_error("Room::Record: no recording was started");
  }
  const std::int64_t end = m_NextSample + static_cast<std::int64_t>(count);
  for (Stretch& stretch : m_Playback.GetStretches()) {
    RenderUntil(stretch, end);
  }
  m_Mix.resize(count);
  m_Line.Take(m_Mix.data(), count);
  m_Noise.AddTo(m_Mix.data(), count);
  std::transform(m_Mix.begin(), m_Mix.end(), samples, ToSample);
  m_NextSample = end;
}

Time Room::Impl::SampleTime(std::uint64_t index) const {
  return m_RecordingStart.value_or(Time{}) + Time(std::llround(static_cast<double>(index) * 1e9 / m_RateHz));
}

// Where the stretch's first frame arrives by the direct way, in microphone samples.
double Room::Impl::FirstFramePosition(const Stretch& stretch) const {
  const double sinceStartS = static_cast<double>((stretch.start - *m_RecordingStart).count()) * 1e-9;
  return (sinceStartS + stretch.delayS + m_Responses[stretch.channel].directDelayS) * m_RateHz;
}

// Renders the frames that are heard before sample `end`: kKernelHalf samples earlier, because the kernel of an early
// reflection can begin before the direct sound.
void Room::Impl::RenderUntil(Stretch& stretch, std::int64_t end) {
  if (stretch.used == stretch.samples.size()) {
    return;
  }
  const double samples = static_cast<double>(end + m_Reach + kKernelHalf) - FirstFramePosition(stretch);
  const double heard = std::ceil(std::max(samples, 0.0) * m_FramesPerSample);
  const auto size = static_cast<double>(stretch.samples.size());
  const auto last = static_cast<std::size_t>(std::min(heard, size));
  if (last > stretch.used) {
    RenderFrames(stretch, stretch.used, last);
    stretch.used = last;
  }
}

void Room::Impl::RenderFrames(const Stretch& stretch, std::size_t first, std::size_t last) {
  const double position = FirstFramePosition(stretch) + static_cast<double>(first) / m_FramesPerSample;
  const double origin = std::floor(position) - static_cast<double>(m_Reach);
  FillDryBuffer(stretch, first, last, (position - origin) * m_FramesPerSample);
  const std::vector<float>& heard = m_Converter.Convert(m_Dry);
  for (const ImpulseResponse::Tap& tap : m_Responses[stretch.channel].taps) {
    m_Line.Add(static_cast<std::int64_t>(origin) + tap.offset, heard, tap.gain);
  }
}

// Writes the frames into m_Dry, the first at `position`, which need not be a whole number, and leaves room for the
// filters at both ends.
void Room::Impl::FillDryBuffer(const Stretch& stretch, std::size_t first, std::size_t last, double position) {
  const auto whole = static_cast<std::size_t>(position);
  const FractionalKernel kernel = MakeFractionalKernel(position - static_cast<double>(whole));
  m_Dry.assign(whole + (last - first) + kKernelHalf + m_Converter.GetReach(), 0.0F);
  float* target = m_Dry.data() + whole + 1 - kKernelHalf;
  for (std::size_t i = first; i < last; ++i, ++target) {
    const auto sample = static_cast<float>(stretch.samples[i]);
    for (std::size_t k = 0; k < kernel.size(); ++k) {
      target[k] += sample * kernel[k];
    }
  }
}

void Room::Impl::ForgetBefore(Time time) {
  std::vector<Stretch>& stretches = m_Playback.GetStretches();
  const auto isOver = [&](const Stretch& stretch) {
    return stretch.start + DurationOfFrames(stretch.samples.size()) < time;
  };
  stretches.erase(std::remove_if(stretches.begin(), stretches.end(), isOver), stretches.end());
}

Room::Room(const RoomConfig& config) : m_Impl(std::make_unique<Impl>(config)) {}
Room::~Room() = default;

const RoomConfig& Room::GetConfig() const {
  return m_Impl->m_Config;
}
void Room::Play(Time start, const std::int16_t* stereo, std::size_t frames) {
  m_Impl->Play(start, stereo, frames);
}
void Room::CutPlayback(Time from) {
  m_Impl->m_Playback.Cut(from);
}
void Room::SetTvMuted(bool muted) {
  m_Impl->m_Playback.SetTvMuted(muted);
}
void Room::SetSpdifDelayMs(double delayMs) {
  m_Impl->m_Playback.SetSpdifDelayMs(delayMs);
}
void Room::SetNoise(const std::vector<float>& samples, double rateHz) {
  m_Impl->m_Noise.SetRecording(samples, rateHz);
}
void Room::StartRecording(Time at) {
  m_Impl->StartRecording(at);
}
void Room::Record(std::int16_t* samples, std::size_t count) {
  m_Impl->Record(samples, count);
}
Time Room::SampleTime(std::uint64_t index) const {
  return m_Impl->SampleTime(index);
}

}  // namespace orvex::sim
