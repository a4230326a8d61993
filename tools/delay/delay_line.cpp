// A ring of frames, read at one place, and during a change at two.
#include "delay/delay_line.h"

#include <algorithm>

namespace orvex::tools {
namespace {

constexpr DelayLine::Frame kSilence{};

std::uint32_t PowerOfTwoAbove(std::uint32_t number) {
  std::uint32_t power = 1;
  while (power <= number) {
    power *= 2;
  }
  return power;
}

}  // namespace

DelayLine::DelayLine(std::uint32_t maximumFrames)
    : m_MaximumFrames(maximumFrames),
      m_Ring(PowerOfTwoAbove(maximumFrames)),
      m_Mask(PowerOfTwoAbove(maximumFrames) - 1) {}

void DelayLine::Begin(std::uint32_t delayFrames, std::uint32_t fadeFrames) {
  SetDelay(delayFrames);
  m_Delay = m_Wanted;
  m_FadeFrames = std::max(1U, fadeFrames);
  m_FadeLeft = 0;
  m_Held = 0;
}

void DelayLine::SetDelay(std::uint32_t delayFrames) {
  m_Wanted = std::min(delayFrames, m_MaximumFrames);
}

void DelayLine::Move(std::int64_t frames) {
  for (std::int64_t i = 0; i < std::min<std::int64_t>(frames, m_MaximumFrames); ++i) {
    Append(kSilence);
  }
  if (frames < 0) {
    const auto back = static_cast<std::uint32_t>(std::min<std::int64_t>(-frames, m_Held));
    m_Position = (m_Position - back) & m_Mask;
    m_Held -= back;
  }
}

DelayLine::Frame DelayLine::Next(const Frame& in) {
  Append(in);
  if (m_FadeLeft == 0 && m_Wanted != m_Delay) {
    m_Next = m_Wanted;
    m_FadeLeft = m_FadeFrames;
  }
  const Frame& present = FrameAt(m_Delay);
  if (m_FadeLeft == 0) {
    return present;
  }
  const Frame& next = FrameAt(m_Next);
  const float gain = NextGain();
  return {present[0] + gain * (next[0] - present[0]), present[1] + gain * (next[1] - present[1])};
}

void DelayLine::Append(const Frame& frame) {
  m_Position = (m_Position + 1) & m_Mask;
  m_Ring[m_Position] = frame;
  m_Held = std::min(m_Held + 1, m_MaximumFrames + 1);
}

const DelayLine::Frame& DelayLine::FrameAt(std::uint32_t delayFrames) const {
  return delayFrames < m_Held ? m_Ring[(m_Position - delayFrames) & m_Mask] : kSilence;
}

// Of the next delay's sound; the present one's is the rest to 1, so that equal sounds keep their level. 3t² - 2t³
// begins and ends without a step of the slope, and where the two sounds are opposed, which is the worst case, their sum
// is below half the level for 35 % of the fade; on a straight line it would be 50 %.
float DelayLine::NextGain() {
  --m_FadeLeft;
  const float t = 1.0F - static_cast<float>(m_FadeLeft) / static_cast<float>(m_FadeFrames);
  if (m_FadeLeft == 0) {
    m_Delay = m_Next;
  }
  return t * t * (3.0F - 2.0F * t);
}

}  // namespace orvex::tools
