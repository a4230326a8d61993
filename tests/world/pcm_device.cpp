// States as ALSA's; times from the number of frames.
#include "world/pcm_device.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orvex::world {

namespace {

constexpr std::int64_t kRateHz = 48000;
constexpr std::int64_t kNsPerS = 1'000'000'000;
constexpr std::size_t kChannels = 2;
constexpr snd_pcm_uframes_t kDefaultBufferFrames = 8192;

// The first moment at which so many frames have been played.
Time FramesToTime(std::uint64_t frames) {
  return Time((static_cast<std::int64_t>(frames) * kNsPerS + kRateHz - 1) / kRateHz);
}

std::uint64_t TimeToFrames(Time time) {
  return static_cast<std::uint64_t>(time.count() * kRateHz / kNsPerS);
}

}  // namespace

PcmDevice::PcmDevice(Scheduler& scheduler, const Limits& limits, Sink sink, Cut cut)
    : m_Scheduler(scheduler),
      m_BufferFrames(limits.bufferFrames == 0 ? kDefaultBufferFrames : limits.bufferFrames),
      m_PeriodFrames(limits.periodFrames),
      m_Sink(std::move(sink)),
      m_Cut(std::move(cut)) {}

PcmDevice::~PcmDevice() {
  m_Cut(m_Scheduler.Now());
}

// A device whose room has reached the stop threshold has run dry.
snd_pcm_state_t PcmDevice::State() {
  if (m_State == SND_PCM_STATE_RUNNING && Room() >= m_Thresholds.stop) {
    m_State = SND_PCM_STATE_XRUN;
  }
  return m_State;
}

// 0 while the device takes frames.
int PcmDevice::Error() {
  switch (State()) {
    case SND_PCM_STATE_PREPARED:
    case SND_PCM_STATE_RUNNING:
      return 0;
    case SND_PCM_STATE_OPEN:
      return -EIO;
    case SND_PCM_STATE_XRUN:
      return -EPIPE;
    case SND_PCM_STATE_SUSPENDED:
      return -ESTRPIPE;
    case SND_PCM_STATE_DISCONNECTED:
      return -ENODEV;
    default:
      return -EBADFD;
  }
}

void PcmDevice::Configure() {
  m_Thresholds = {m_PeriodFrames, 1, m_BufferFrames};
  m_State = SND_PCM_STATE_SETUP;
  static_cast<void>(Prepare());
}

int PcmDevice::Prepare() {
  switch (State()) {
    case SND_PCM_STATE_OPEN:
      return -EIO;
    case SND_PCM_STATE_DISCONNECTED:
      return -ENODEV;
    case SND_PCM_STATE_RUNNING:
      return -EBUSY;
    default:
      m_State = SND_PCM_STATE_PREPARED;
      m_Written = 0;
      m_Buffer.clear();
      return 0;
  }
}

int PcmDevice::Drop() {
  switch (State()) {
    case SND_PCM_STATE_OPEN:
      return -EIO;
    case SND_PCM_STATE_DISCONNECTED:
      return -ENODEV;
    default:
      m_State = SND_PCM_STATE_SETUP;
      m_Cut(m_Scheduler.Now());
      return 0;
  }
}

void PcmDevice::Fail(snd_pcm_state_t state) {
  m_SuspendedState = State();
  m_StoppedAt = m_Scheduler.Now();
  m_State = state;
  m_Cut(m_StoppedAt);
}

int PcmDevice::Resume() {
  if (m_State != SND_PCM_STATE_SUSPENDED) {
    return IsConfigured() ? -EBADFD : -EIO;
  }
  m_State = m_SuspendedState;
  if (m_State == SND_PCM_STATE_RUNNING) {
    m_StartedAt += m_Scheduler.Now() - m_StoppedAt;
    const std::size_t held = m_Buffer.size() / kChannels;
    const auto unplayed = static_cast<std::size_t>(std::min<std::uint64_t>(held, m_BufferFrames - Room()));
    m_Sink(m_Scheduler.Now(), m_Buffer.data() + (held - unplayed) * kChannels, unplayed);
  }
  return 0;
}

std::uint64_t PcmDevice::Played() const {
  return m_State == SND_PCM_STATE_RUNNING ? TimeToFrames(m_Scheduler.Now() - m_StartedAt) : 0;
}

std::uint64_t PcmDevice::Room() const {
  return m_BufferFrames + Played() - m_Written;
}

// Frames that fit. They are played right behind the ones before; a device that rests begins at its start threshold.
void PcmDevice::Take(const std::int16_t* stereo, std::size_t frames) {
  m_Buffer.insert(m_Buffer.end(), stereo, stereo + frames * kChannels);
  const std::size_t held = m_BufferFrames * kChannels;
  if (m_Buffer.size() > held) {
    m_Buffer.erase(m_Buffer.begin(), m_Buffer.end() - static_cast<std::ptrdiff_t>(held));
  }
  if (m_State == SND_PCM_STATE_RUNNING) {
    m_Sink(m_StartedAt + FramesToTime(m_Written), stereo, frames);
  }
  m_Written += frames;
  if (m_State == SND_PCM_STATE_PREPARED && frames > 0 && m_Written >= m_Thresholds.start) {
    m_State = SND_PCM_STATE_RUNNING;
    m_StartedAt = m_Scheduler.Now();
    m_Sink(m_StartedAt, m_Buffer.data(), m_Buffer.size() / kChannels);
  }
}

snd_pcm_sframes_t PcmDevice::Write(const void* frames, snd_pcm_uframes_t count) {
  const auto* stereo = static_cast<const std::int16_t*>(frames);
  for (snd_pcm_uframes_t taken = 0;;) {
    const int error = Error();
    if (error < 0) {
      return taken > 0 ? static_cast<snd_pcm_sframes_t>(taken) : error;
    }
    const auto fitting = static_cast<snd_pcm_uframes_t>(std::min<std::uint64_t>(Room(), count - taken));
    Take(stereo + taken * kChannels, fitting);
    taken += fitting;
    if (taken == count) {
      return static_cast<snd_pcm_sframes_t>(count);
    }
    m_Scheduler.Sleep(FramesToTime(std::min(std::max<snd_pcm_uframes_t>(m_Thresholds.availMin, 1), count - taken)));
  }
}

int PcmDevice::Wait(int timeoutMs) {
  const int error = Error();
  if (error < 0) {
    return error;
  }
  const bool runs = m_State == SND_PCM_STATE_RUNNING;
  const Time timeout = std::chrono::milliseconds(timeoutMs);
  m_Scheduler.Sleep(runs ? std::min(timeout, FramesToTime(m_Thresholds.availMin)) : timeout);
  return runs ? 1 : 0;
}

}  // namespace orvex::world
