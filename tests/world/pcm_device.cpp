// A playback device in virtual time.
#include "pcm_device.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orvex::world {

namespace {

constexpr std::int64_t kRateHz = 48000;
constexpr std::size_t kChannels = 2;

Time FramesToTime(std::uint64_t frames) {
  return Time(static_cast<std::int64_t>(frames) * 1'000'000'000 / kRateHz);
}

}  // namespace

PcmDevice::PcmDevice(Scheduler& scheduler, const Limits& limits, Sink sink, Cut cut)
    : m_Scheduler(scheduler), m_Limits(limits), m_Sink(std::move(sink)), m_Cut(std::move(cut)) {}

// A device that has played all it was given has run dry.
snd_pcm_state_t PcmDevice::State() {
  if (m_State == SND_PCM_STATE_RUNNING && m_Scheduler.Now() > m_StartedAt + FramesToTime(m_Written)) {
    m_State = SND_PCM_STATE_XRUN;
  }
  return m_State;
}

void PcmDevice::Prepare() {
  m_State = SND_PCM_STATE_PREPARED;
  m_Written = 0;
  m_Waiting.clear();
}

void PcmDevice::Drop() {
  if (m_State != SND_PCM_STATE_DISCONNECTED) {
    m_State = SND_PCM_STATE_SETUP;
  }
  m_Waiting.clear();
  m_Cut(m_Scheduler.Now());
}

std::uint64_t PcmDevice::Played() const {
  const auto played = static_cast<std::uint64_t>((m_Scheduler.Now() - m_StartedAt).count() * kRateHz / 1'000'000'000);
  return std::min(played, m_Written);
}

void PcmDevice::Start() {
  m_State = SND_PCM_STATE_RUNNING;
  m_StartedAt = m_Scheduler.Now();
  m_Sink(m_StartedAt, m_Waiting.data(), m_Waiting.size() / kChannels);
  m_Waiting.clear();
}

snd_pcm_sframes_t PcmDevice::Write(const void* frames, snd_pcm_uframes_t count) {
  const auto* samples = static_cast<const std::int16_t*>(frames);
  for (snd_pcm_uframes_t left = count; left > 0;) {
    switch (State()) {
      case SND_PCM_STATE_PREPARED:
      case SND_PCM_STATE_RUNNING:
        break;
      case SND_PCM_STATE_XRUN:
        return -EPIPE;
      case SND_PCM_STATE_SUSPENDED:
        return -ESTRPIPE;
      case SND_PCM_STATE_DISCONNECTED:
        return -ENODEV;
      default:
        return -EBADFD;
    }
    const std::uint64_t played = m_State == SND_PCM_STATE_RUNNING ? Played() : 0;
    const std::uint64_t room =
        m_Limits.bufferFrames - std::min<std::uint64_t>(m_Limits.bufferFrames, m_Written - played);
    const auto taken = static_cast<snd_pcm_uframes_t>(std::min<std::uint64_t>(room, left));
    if (m_State == SND_PCM_STATE_RUNNING) {
      m_Sink(m_StartedAt + FramesToTime(m_Written), samples, taken);
    } else {
      m_Waiting.insert(m_Waiting.end(), samples, samples + taken * kChannels);
    }
    m_Written += taken;
    samples += taken * kChannels;
    left -= taken;
    if (m_State == SND_PCM_STATE_PREPARED && m_Written >= startThreshold) {
      Start();
    }
    if (left > 0) {
      m_Scheduler.Sleep(FramesToTime(std::min<std::uint64_t>(std::max<snd_pcm_uframes_t>(availMin, 1), left)));
    }
  }
  return static_cast<snd_pcm_sframes_t>(count);
}

}  // namespace orvex::world
