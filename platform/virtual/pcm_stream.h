// The playing stream of the virtual sound device, as arithmetic: when each frame leaves the device, and where a fault
// stops it. Uses no thread and no clock: time is an argument, on CLOCK_MONOTONIC.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "virtual/monotonic_time.h"

namespace orvex::virtual_tv {

constexpr unsigned kPcmRateHz = 48000;
constexpr unsigned kPcmChannels = 2;

// Where the frames go once their time is known.
class SoundSink {
public:
  // The first frame leaves the device at `start`. Frames are interleaved, kPcmChannels samples each.
  virtual void Play(MonotonicTime start, const std::int16_t* frames, std::size_t count) = 0;
  // Frames that were to leave at `from` or later never will.
  virtual void Cut(MonotonicTime from) = 0;

protected:
  ~SoundSink() = default;
};

enum class PcmFault { kUnderrun, kSuspend, kDisconnect, kStall };

// A fault that happens when `frame` frames have left the device since it was opened.
struct PcmFaultPoint {
  std::uint64_t frame;
  PcmFault fault;
};

// Frame numbers count from the last Prepare(). One thread at a time.
class PcmStream {
public:
  enum class Progress { kStopped, kPlaying, kHalted };

  // `faults` in the order of their frames; one that has happened is taken out, so that it does not happen again when
  // the device is opened once more. Both arguments must outlive this object.
  PcmStream(SoundSink& sink, std::deque<PcmFaultPoint>& faults) : m_Sink(sink), m_Faults(faults) {}

  // Begins a new, empty stream; what still waited for its time is cut.
  void Prepare(MonotonicTime now);
  // Takes frames for the end of the stream. Before the start they wait; afterwards they go to the sink at once.
  void Accept(const std::int16_t* frames, std::size_t count);
  void Start(MonotonicTime now);
  // Ends the stream: frames that have not left are cut.
  void Stop(MonotonicTime now);
  // The next fault, if it has happened by now; the stream then halts at its frame. At most one per call.
  bool TakeFault(MonotonicTime now, PcmFault& fault);
  // Halts where it is, without a listed fault: the frames have run out.
  void Halt(MonotonicTime now);
  // Goes on after a halt; all that has not left does so from now on.
  void Resume(MonotonicTime now);

  Progress GetProgress() const { return m_Progress; }
  std::uint64_t Written() const { return m_Written; }
  // Frames that have left by `now`, never more than were written.
  std::uint64_t Position(MonotonicTime now) const;
  // The first moment at which Position() is `frame`, while playing and unless the stream is short of frames.
  MonotonicTime TimeOfPosition(std::uint64_t frame) const;
  // The frame at which the next fault happens; the largest number when none is left.
  std::uint64_t FaultFrame() const;

private:
  void StandAt(std::uint64_t frame, Progress progress);
  void HandOver();

  SoundSink& m_Sink;
  std::deque<PcmFaultPoint>& m_Faults;
  Progress m_Progress = Progress::kStopped;
  std::uint64_t m_FramesBefore = 0;     // left the device in earlier streams
  std::uint64_t m_Written = 0;          // accepted so far
  std::uint64_t m_HandedOver = 0;       // of them, given to the sink
  std::vector<std::int16_t> m_Waiting;  // the samples from m_HandedOver to m_Written
  // While playing: frame m_AnchorFrame leaves at m_AnchorTime. Otherwise: the position.
  std::uint64_t m_AnchorFrame = 0;
  MonotonicTime m_AnchorTime{};
};

}  // namespace orvex::virtual_tv
