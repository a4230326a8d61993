// Delays stereo sound by a number of frames that changes while it plays. Pure computation.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace orvex::tools {

// Memory is taken by the constructor only.
class DelayLine {
public:
  using Frame = std::array<float, 2>;

  // `maximumFrames`: longest delay.
  explicit DelayLine(std::uint32_t maximumFrames);

  // Forgets all sound; the delay is in force at once. A change takes `fadeFrames` frames.
  void Begin(std::uint32_t delayFrames, std::uint32_t fadeFrames);
  // Fades from the present delay to this one, after a fade that is under way. Longer delays than the longest are that.
  void SetDelay(std::uint32_t delayFrames);

  // The next frame comes so much later than it would, and what is in between is silence; or so much earlier, and it
  // takes the place of one that has been there.
  void Move(std::int64_t frames);

  // The next frame in, and the one that came in `delayFrames` earlier; silence when none did since Begin().
  Frame Next(const Frame& in);

private:
  void Append(const Frame& frame);
  const Frame& FrameAt(std::uint32_t delayFrames) const;
  float NextGain();

  const std::uint32_t m_MaximumFrames;
  std::vector<Frame> m_Ring;  // a power of two, so that positions wrap by a mask
  std::uint32_t m_Mask;
  std::uint32_t m_Position = 0;  // of the newest frame
  std::uint32_t m_Held = 0;      // frames since Begin(), as many as matter
  std::uint32_t m_Delay = 0;
  std::uint32_t m_Next = 0;    // fading to this one
  std::uint32_t m_Wanted = 0;  // the one after that
  std::uint32_t m_FadeFrames = 1;
  std::uint32_t m_FadeLeft = 0;  // 0: no fade is under way
};

}  // namespace orvex::tools
