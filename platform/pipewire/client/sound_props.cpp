// Reads and builds pods.
#include "pipewire/client/sound_props.h"

#include <spa/param/props.h>
#include <spa/pod/iter.h>

#include <array>

namespace orvex::pipewire {
namespace {

constexpr std::uint32_t kMaximumChannels = 64;  // SPA_AUDIO_MAX_CHANNELS

}  // namespace

SoundProps ReadSoundProps(const spa_pod* props) {
  SoundProps sound;
  const spa_pod_prop* const mute = spa_pod_find_prop(props, nullptr, SPA_PROP_mute);
  bool isMuted = false;
  if (mute != nullptr && spa_pod_get_bool(&mute->value, &isMuted) >= 0) {
    sound.isMuted = isMuted;
  }
  std::array<float, kMaximumChannels> volumes{};
  if (const spa_pod_prop* const volume = spa_pod_find_prop(props, nullptr, SPA_PROP_channelVolumes)) {
    const std::uint32_t count = spa_pod_copy_array(&volume->value, SPA_TYPE_Float, volumes.data(), kMaximumChannels);
    sound.channelVolumes.assign(volumes.begin(), volumes.begin() + count);
  }
  return sound;
}

void AddSoundProps(spa_pod_builder* builder, std::uint32_t id, const SoundProps& sound) {
  spa_pod_frame frame{};
  spa_pod_builder_push_object(builder, &frame, SPA_TYPE_OBJECT_Props, id);
  if (sound.isMuted) {
    spa_pod_builder_prop(builder, SPA_PROP_mute, 0);
    spa_pod_builder_bool(builder, *sound.isMuted);
  }
  if (!sound.channelVolumes.empty()) {
    spa_pod_builder_prop(builder, SPA_PROP_channelVolumes, 0);
    spa_pod_builder_array(builder, sizeof(float), SPA_TYPE_Float,
                          static_cast<std::uint32_t>(sound.channelVolumes.size()), sound.channelVolumes.data());
  }
  spa_pod_builder_pop(builder, &frame);
}

}  // namespace orvex::pipewire
