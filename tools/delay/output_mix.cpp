// Adds up the inputs, frame by frame.
#include "delay/output_mix.h"

#include <cmath>
#include <cstdlib>

#include "pipewire/client/delay_node.h"

namespace orvex::tools {
namespace {

constexpr std::uint32_t kHighestRateHz = 192000;
constexpr double kFadeMs = 10.0;
// What the line holds is old when the graph has rested longer than this.
constexpr std::uint64_t kRestNs = 200'000'000;

std::uint32_t FramesOf(double durationMs, std::uint32_t rateHz) {
  return static_cast<std::uint32_t>(std::lround(durationMs * 1e-3 * rateHz));
}

float At(const float* samples, std::uint32_t frame) {
  return samples == nullptr ? 0.0F : samples[frame];
}

void Put(float* samples, std::uint32_t frame, float value) {
  if (samples != nullptr) {
    samples[frame] = value;
  }
}

}  // namespace

OutputMix::OutputMix(double delayMs)
    : m_DelayMs(delayMs), m_Line(FramesOf(pipewire::kMaximumDelayMs, kHighestRateHz)) {}

void OutputMix::SetDelayMs(double delayMs) {
  m_DelayMs = delayMs;
}

void OutputMix::OnCycle(const pipewire::Cycle& cycle) {
  FollowClock(cycle);
  for (std::uint32_t frame = 0; frame < cycle.frames; ++frame) {
    const float left = At(cycle.in[kProgrammeLeft], frame);
    const float right = At(cycle.in[kProgrammeRight], frame);
    const float referenceTest = At(cycle.in[kTestLeft], frame);
    const float delayedTest = At(cycle.in[kTestRight], frame);
    const DelayLine::Frame delayed = m_Line.Next({left + delayedTest, right + delayedTest});
    Put(cycle.out[kReferenceLeft], frame, left + referenceTest);
    Put(cycle.out[kReferenceRight], frame, right + referenceTest);
    Put(cycle.out[kDelayedLeft], frame, delayed[0]);
    Put(cycle.out[kDelayedRight], frame, delayed[1]);
  }
}

void OutputMix::FollowClock(const pipewire::Cycle& cycle) {
  constexpr std::uint64_t kNsPerSecond = 1'000'000'000;
  const std::uint32_t delayFrames = FramesOf(m_DelayMs, cycle.rateHz);
  if (cycle.rateHz != m_RateHz || cycle.startNs > m_NextCycleNs + kRestNs) {
    m_Line.Begin(delayFrames, FramesOf(kFadeMs, cycle.rateHz));
    m_RateHz = cycle.rateHz;
  } else {
    m_Line.SetDelay(delayFrames);
    m_Line.Move(LostFrames(cycle));
  }
  m_NextCycleNs = cycle.startNs + cycle.frames * kNsPerSecond / cycle.rateHz;
  m_Clock = cycle.clock;
  m_NextPosition = cycle.position + cycle.frames;
}

// A busy machine may lose a cycle of this process, or have it work one off twice. The reference output's sound stands
// at the clock's position at which it came in, and the delay counts from there: what is in the line would else be heard
// too late by each lost cycle. Less than a cycle is no lost one, but a clock that is set right.
std::int64_t OutputMix::LostFrames(const pipewire::Cycle& cycle) const {
  const auto lost = static_cast<std::int64_t>(cycle.position - m_NextPosition);
  return cycle.clock == m_Clock && std::abs(lost) >= static_cast<std::int64_t>(cycle.frames) ? lost : 0;
}

}  // namespace orvex::tools
