// Two delays, noise, and the level of a loudspeaker at some distance.
#include "pipewire/room_sound.h"

#include <cmath>

namespace orvex::integration {
namespace {

constexpr double kFramesPerMs = 48.0;
constexpr float kLevel = 0.3F;

// By the graph's clock, so that a missed cycle does not move it.
float HumAt(double hz, const pipewire::Cycle& cycle, std::size_t frame) {
  const double seconds = static_cast<double>(cycle.position + frame) / cycle.rateHz;
  return hz == 0.0 ? 0.0F : kLevel * static_cast<float>(std::sin(2.0 * M_PI * std::fmod(hz * seconds, 1.0)));
}

}  // namespace

RoomSound::Way::Way(double ms) : m_Ring(static_cast<std::size_t>(std::lround(ms * kFramesPerMs)) + 1) {}

float RoomSound::Way::Pass(float sample) {
  m_Ring[m_Position] = sample;
  m_Position = (m_Position + 1) % m_Ring.size();
  return m_Ring[m_Position];
}

RoomSound::RoomSound(const RoomWays& ways)
    : m_HumHz(ways.humHz), m_Reference(ways.referenceMs), m_Delayed(ways.delayedMs), m_Noise(-ways.noise, ways.noise) {}

void RoomSound::OnCycle(const pipewire::Cycle& cycle) {
  const auto sampleOf = [&](std::size_t input, std::size_t frame) {
    return cycle.in[input] == nullptr ? 0.0F : cycle.in[input][frame];
  };
  for (std::size_t frame = 0; frame < cycle.frames; ++frame) {
    const float heard = kLevel * (m_Reference.Pass(sampleOf(0, frame)) + m_Delayed.Pass(sampleOf(1, frame))) +
                        m_Noise(m_Random) + HumAt(m_HumHz, cycle, frame);
    if (cycle.out[0] != nullptr) {
      cycle.out[0][frame] = heard;
    }
  }
}

}  // namespace orvex::integration
