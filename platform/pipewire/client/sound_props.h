// Mute and volume as PipeWire's parameters hold them.
#pragma once

#include <spa/pod/builder.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace orvex::pipewire {

// What is empty is not part of a parameter, and is left as it is where the parameter is set.
struct SoundProps {
  std::optional<bool> isMuted;
  std::vector<float> channelVolumes;  // factors of the amplitude
};

// `props`: an object of the type Props, a parameter by itself or in a Route.
SoundProps ReadSoundProps(const spa_pod* props);

// Adds an object of the type Props, as the parameter `id`.
void AddSoundProps(spa_pod_builder* builder, std::uint32_t id, const SoundProps& sound);

}  // namespace orvex::pipewire
