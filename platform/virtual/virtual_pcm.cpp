// Positions, states and wake-ups of the virtual sound device. The arithmetic is in pcm_stream.
#include "virtual/virtual_pcm.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "virtual/monotonic_time.h"

namespace orvex::virtual_tv {
namespace {

constexpr unsigned kFrameBytes = kPcmChannels * sizeof(std::int16_t);

VirtualPcm& DeviceOf(snd_pcm_ioplug_t* io) {
  return *static_cast<VirtualPcm*>(io->private_data);
}

int OnStart(snd_pcm_ioplug_t* io) {
  DeviceOf(io).Start();
  return 0;
}

int OnStop(snd_pcm_ioplug_t* io) {
  DeviceOf(io).Stop();
  return 0;
}

int OnPrepare(snd_pcm_ioplug_t* io) {
  DeviceOf(io).Prepare();
  return 0;
}

int OnResume(snd_pcm_ioplug_t* io) {
  DeviceOf(io).Resume();
  return 0;
}

snd_pcm_sframes_t OnPointer(snd_pcm_ioplug_t* io) {
  return DeviceOf(io).Pointer();
}

snd_pcm_sframes_t OnTransfer(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                             snd_pcm_uframes_t count) {
  return DeviceOf(io).Transfer(areas, offset, count);
}

int OnSwParams(snd_pcm_ioplug_t* io, snd_pcm_sw_params_t* params) {
  return DeviceOf(io).TakeSwParams(params);
}

// The timer reads as "in"; to the program it says "out", that there is room.
int OnPoll(snd_pcm_ioplug_t* io, pollfd* descriptors, unsigned count, unsigned short* events) {
  const bool isDue = count == 1 && (descriptors->revents & POLLIN) != 0;
  const bool isBroken = io->state == SND_PCM_STATE_XRUN || io->state == SND_PCM_STATE_SUSPENDED ||
                        io->state == SND_PCM_STATE_DISCONNECTED;
  *events = static_cast<unsigned short>((isDue ? POLLOUT : 0) | (isBroken ? POLLERR : 0));
  return 0;
}

int OnClose(snd_pcm_ioplug_t* io) {
  delete &DeviceOf(io);
  return 0;
}

snd_pcm_ioplug_callback_t MakeCallbacks() {
  snd_pcm_ioplug_callback_t callbacks{};
  callbacks.start = OnStart;
  callbacks.stop = OnStop;
  callbacks.prepare = OnPrepare;
  callbacks.resume = OnResume;
  callbacks.pointer = OnPointer;
  callbacks.transfer = OnTransfer;
  callbacks.sw_params = OnSwParams;
  callbacks.poll_revents = OnPoll;
  callbacks.close = OnClose;
  return callbacks;
}

}  // namespace

VirtualPcm::~VirtualPcm() {
  m_Stream.Stop(MonotonicNow());
  if (m_Timer >= 0) {
    ::close(m_Timer);
  }
  m_Slot.isTaken = false;
}

int VirtualPcm::Create(const char* name, snd_pcm_stream_t direction, int mode) {
  static const snd_pcm_ioplug_callback_t callbacks = MakeCallbacks();
  m_Timer = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
  if (m_Timer < 0) {
    return -errno;
  }
  m_Io.version = SND_PCM_IOPLUG_VERSION;
  m_Io.name = "Orvex virtual sound device";
  m_Io.flags = SND_PCM_IOPLUG_FLAG_MONOTONIC;
  m_Io.poll_fd = m_Timer;
  m_Io.poll_events = POLLIN;
  m_Io.callback = &callbacks;
  m_Io.private_data = this;
  return snd_pcm_ioplug_create(&m_Io, name, direction, mode);
}

int VirtualPcm::SetConstraints() {
  struct Constraint {
    int parameter;
    unsigned minimum;
    unsigned maximum;
  };
  constexpr unsigned kMinimumPeriodFrames = 64;
  constexpr unsigned kMaximumBufferFrames = 65536;
  constexpr std::array<Constraint, 7> kConstraints{{
      {SND_PCM_IOPLUG_HW_ACCESS, SND_PCM_ACCESS_RW_INTERLEAVED, SND_PCM_ACCESS_RW_INTERLEAVED},
      {SND_PCM_IOPLUG_HW_FORMAT, SND_PCM_FORMAT_S16_LE, SND_PCM_FORMAT_S16_LE},
      {SND_PCM_IOPLUG_HW_CHANNELS, kPcmChannels, kPcmChannels},
      {SND_PCM_IOPLUG_HW_RATE, kPcmRateHz, kPcmRateHz},
      {SND_PCM_IOPLUG_HW_PERIOD_BYTES, kMinimumPeriodFrames * kFrameBytes, kMaximumBufferFrames / 2 * kFrameBytes},
      {SND_PCM_IOPLUG_HW_BUFFER_BYTES, 2 * kMinimumPeriodFrames * kFrameBytes, kMaximumBufferFrames * kFrameBytes},
      {SND_PCM_IOPLUG_HW_PERIODS, 2, kMaximumBufferFrames / kMinimumPeriodFrames},
  }};
  for (const Constraint& constraint : kConstraints) {
    const unsigned only[] = {constraint.minimum};
    const int result =
        constraint.minimum == constraint.maximum
            ? snd_pcm_ioplug_set_param_list(&m_Io, constraint.parameter, 1, only)
            : snd_pcm_ioplug_set_param_minmax(&m_Io, constraint.parameter, constraint.minimum, constraint.maximum);
    if (result < 0) {
      return result;
    }
  }
  return 0;
}

int VirtualPcm::TakeSwParams(snd_pcm_sw_params_t* params) {
  return snd_pcm_sw_params_get_avail_min(params, &m_AvailMin);
}

void VirtualPcm::Start() {
  m_Stream.Start(MonotonicNow());
  SetTimer();
}

void VirtualPcm::Stop() {
  m_Stream.Stop(MonotonicNow());
  m_IsStalled = false;
  SetTimer();
}

void VirtualPcm::Prepare() {
  m_Stream.Prepare(MonotonicNow());
  m_IsStalled = false;
  SetTimer();
}

void VirtualPcm::Resume() {
  if (m_Io.state == SND_PCM_STATE_SUSPENDED) {
    m_Stream.Resume(MonotonicNow());
    snd_pcm_ioplug_set_state(&m_Io, SND_PCM_STATE_RUNNING);
    SetTimer();
  }
}

snd_pcm_sframes_t VirtualPcm::Pointer() {
  const MonotonicTime now = MonotonicNow();
  PcmFault fault{};
  snd_pcm_sframes_t result = 0;
  if (m_Stream.TakeFault(now, fault)) {
    result = ApplyFault(fault);
  } else if (HasRunDry(now)) {
    m_Stream.Halt(now);
    result = -EPIPE;  // to libasound an underrun, or the end of a drain
  }
  if (m_IsStalled && m_Io.state == SND_PCM_STATE_DRAINING) {
    result = -EIO;  // ends the drain, else the program would wait for ever
  }
  SetTimer();
  return result < 0 ? result : PositionInBuffer(now);
}

snd_pcm_sframes_t VirtualPcm::ApplyFault(PcmFault fault) {
  switch (fault) {
    case PcmFault::kUnderrun:
      return -EPIPE;
    case PcmFault::kSuspend:
      snd_pcm_ioplug_set_state(&m_Io, SND_PCM_STATE_SUSPENDED);
      break;
    case PcmFault::kDisconnect:
      snd_pcm_ioplug_set_state(&m_Io, SND_PCM_STATE_DISCONNECTED);
      break;
    case PcmFault::kStall:
      m_IsStalled = true;
      break;
  }
  return 0;
}

snd_pcm_sframes_t VirtualPcm::Transfer(const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                                       snd_pcm_uframes_t count) {
  if (m_Io.state == SND_PCM_STATE_SUSPENDED) {
    return -ESTRPIPE;
  }
  if (m_Io.state == SND_PCM_STATE_DISCONNECTED) {
    return -ENODEV;
  }
  const MonotonicTime now = MonotonicNow();
  if (HasRunDry(now)) {
    m_Stream.Halt(now);
    snd_pcm_ioplug_set_state(&m_Io, SND_PCM_STATE_XRUN);
    return -EPIPE;
  }
  const unsigned firstBit = areas[0].first + areas[0].step * static_cast<unsigned>(offset);
  const auto* const bytes = static_cast<const std::uint8_t*>(areas[0].addr) + firstBit / 8;
  m_Stream.Accept(reinterpret_cast<const std::int16_t*>(bytes), count);
  SetTimer();
  return static_cast<snd_pcm_sframes_t>(count);
}

bool VirtualPcm::HasRunDry(MonotonicTime now) const {
  return m_Stream.GetProgress() == PcmStream::Progress::kPlaying && m_Stream.Position(now) == m_Stream.Written();
}

// Never a whole buffer ahead of the position before: that buffer would have run dry.
snd_pcm_sframes_t VirtualPcm::PositionInBuffer(MonotonicTime now) const {
  const bool isConfigured = m_Io.buffer_size > 0;
  return isConfigured ? static_cast<snd_pcm_sframes_t>(m_Stream.Position(now) % m_Io.buffer_size) : 0;
}

// When a program that waits for room, or for the end of a drain, is to look again; empty: not before something is done.
std::optional<MonotonicTime> VirtualPcm::EndOfWait(MonotonicTime now) const {
  const std::uint64_t needed = m_Stream.Written() + m_AvailMin;
  const std::uint64_t roomAt = needed - std::min<std::uint64_t>(needed, m_Io.buffer_size);
  switch (m_Stream.GetProgress()) {
    case PcmStream::Progress::kPlaying:
      return m_Stream.TimeOfPosition(m_Io.state == SND_PCM_STATE_DRAINING ? m_Stream.Written() : roomAt);
    case PcmStream::Progress::kHalted:
      return m_IsStalled ? std::nullopt : std::optional(now);
    case PcmStream::Progress::kStopped:
      return m_Io.state == SND_PCM_STATE_PREPARED && roomAt > 0 ? std::nullopt : std::optional(now);
  }
  return std::nullopt;
}

void VirtualPcm::SetTimer() {
  itimerspec end{};
  if (const auto time = EndOfWait(MonotonicNow())) {
    constexpr std::int64_t kSecondNs = 1'000'000'000;
    end.it_value.tv_sec = static_cast<time_t>(time->count() / kSecondNs);
    end.it_value.tv_nsec = static_cast<long>(time->count() % kSecondNs);
  }
  ::timerfd_settime(m_Timer, TFD_TIMER_ABSTIME, &end, nullptr);
}

}  // namespace orvex::virtual_tv
