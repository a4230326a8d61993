// The contract's volume, 0 to 100, and PipeWire's, a factor of the amplitude.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace orvex::pipewire {

constexpr std::int32_t kMaximumVolume = 100;

// Cubic, as the volume controls of desktops are.
inline float AmplitudeOf(std::int32_t volume) {
  const double part = static_cast<double>(volume) / kMaximumVolume;
  return static_cast<float>(part * part * part);
}

// What is louder than the full volume counts as the full volume.
inline std::int32_t VolumeOf(float amplitude) {
  const double part = std::cbrt(std::clamp(static_cast<double>(amplitude), 0.0, 1.0));
  return static_cast<std::int32_t>(std::lround(part * kMaximumVolume));
}

// A card's control rounds what it is set to.
inline bool IsSameVolume(float one, float other) {
  return std::abs(std::cbrt(one) - std::cbrt(other)) * kMaximumVolume < 0.5F;
}

}  // namespace orvex::pipewire
