// Positions and times of the virtual sound device's stream.
#include "virtual/pcm_stream.h"

#include <algorithm>
#include <limits>

namespace orvex::virtual_tv {
namespace {

// One frame lasts 62500/3 ns at 48000 Hz; the fraction keeps every time exact.
constexpr std::int64_t kThreeFramesNs = 62500;
static_assert(kThreeFramesNs * kPcmRateHz == 3 * std::int64_t{1'000'000'000});

std::uint64_t FramesIn(MonotonicTime span) {
  return span.count() <= 0 ? 0 : static_cast<std::uint64_t>(span.count() * 3 / kThreeFramesNs);
}

// Rounded up, so that FramesIn(DurationOf(n)) is n.
MonotonicTime DurationOf(std::uint64_t frames) {
  return MonotonicTime{(static_cast<std::int64_t>(frames) * kThreeFramesNs + 2) / 3};
}

}  // namespace

void PcmStream::Prepare(MonotonicTime now) {
  Stop(now);
  m_FramesBefore += m_AnchorFrame;
  m_Written = 0;
  m_HandedOver = 0;
  m_Waiting.clear();
  m_AnchorFrame = 0;
}

void PcmStream::Accept(const std::int16_t* frames, std::size_t count) {
  m_Waiting.insert(m_Waiting.end(), frames, frames + count * kPcmChannels);
  m_Written += count;
  HandOver();
}

void PcmStream::Start(MonotonicTime now) {
  m_AnchorTime = now;
  m_Progress = Progress::kPlaying;
  HandOver();
}

void PcmStream::Stop(MonotonicTime now) {
  if (m_Progress == Progress::kPlaying) {
    m_Sink.Cut(now);
    StandAt(Position(now), Progress::kStopped);
  }
  m_Progress = Progress::kStopped;
}

bool PcmStream::TakeFault(MonotonicTime now, PcmFault& fault) {
  if (m_Progress != Progress::kPlaying || m_Faults.empty() || Position(now) < FaultFrame()) {
    return false;
  }
  const std::uint64_t frame = FaultFrame();
  fault = m_Faults.front().fault;
  m_Faults.pop_front();
  StandAt(frame, Progress::kHalted);
  return true;
}

void PcmStream::Halt(MonotonicTime now) {
  StandAt(Position(now), Progress::kHalted);
}

void PcmStream::Resume(MonotonicTime now) {
  if (m_Progress == Progress::kHalted) {
    Start(now);
  }
}

std::uint64_t PcmStream::Position(MonotonicTime now) const {
  if (m_Progress != Progress::kPlaying) {
    return m_AnchorFrame;
  }
  return std::min({m_AnchorFrame + FramesIn(now - m_AnchorTime), m_Written, FaultFrame()});
}

MonotonicTime PcmStream::TimeOfPosition(std::uint64_t frame) const {
  return m_AnchorTime + DurationOf(frame - std::min(frame, m_AnchorFrame));
}

std::uint64_t PcmStream::FaultFrame() const {
  if (m_Faults.empty()) {
    return std::numeric_limits<std::uint64_t>::max();
  }
  const std::uint64_t passed = m_FramesBefore + m_AnchorFrame;
  return m_AnchorFrame + (std::max(m_Faults.front().frame, passed) - passed);
}

void PcmStream::StandAt(std::uint64_t frame, Progress progress) {
  m_AnchorFrame = frame;
  m_Progress = progress;
}

// Frames behind the next fault wait: whether and when they leave is not known before it has happened.
void PcmStream::HandOver() {
  const std::uint64_t known = std::min(m_Written, FaultFrame());
  if (m_Progress != Progress::kPlaying || known <= m_HandedOver) {
    return;
  }
  const std::size_t count = static_cast<std::size_t>(known - m_HandedOver);
  m_Sink.Play(TimeOfPosition(m_HandedOver), m_Waiting.data(), count);
  m_Waiting.erase(m_Waiting.begin(), m_Waiting.begin() + static_cast<std::ptrdiff_t>(count * kPcmChannels));
  m_HandedOver = known;
}

}  // namespace orvex::virtual_tv
