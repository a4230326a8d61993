// The sound manager: mute and volume of the reference output, which stands for the television's own speaker.
#include "orvex/platform/sound_manager.h"

#include <algorithm>

#include "pipewire/client/pc_config.h"
#include "pipewire/client/volume_scale.h"
#include "pipewire/output_sound.h"
#include "pipewire/session.h"

namespace {

using orvex::pipewire::OutputSound;
using orvex::pipewire::Session;

constexpr int kTvSpeaker = 0;
// Both outputs of a computer are heard at the same time, and it was the user who has muted the reference. So it is
// muted again after a run, as a television's speaker is while another output is selected.
constexpr std::int32_t kOutputBesideTheSpeaker = 1;

int DoWithReference(const std::function<void(OutputSound& sound)>& work) {
  return Session::Instance().Do(kSoundUnreachable, [&] {
    const auto config = orvex::pipewire::ReadPcConfig(orvex::pipewire::PcConfigFile());
    OutputSound sound(Session::Instance(), config.reference);
    work(sound);
    return kSoundDone;
  });
}

float Loudest(const std::vector<float>& channelVolumes) {
  return *std::max_element(channelVolumes.begin(), channelVolumes.end());
}

// The channels of an output may differ. The last difference that was heard is kept over the volume 0, in which all of
// them are alike. Main loop only.
std::vector<float> WithLoudest(const std::vector<float>& channelVolumes, float amplitude) {
  static std::vector<float> lastHeard;
  if (Loudest(channelVolumes) > 0.0F) {
    lastHeard = channelVolumes;
  }
  std::vector<float> volumes = lastHeard;
  if (volumes.size() != channelVolumes.size()) {
    return std::vector<float>(channelVolumes.size(), amplitude);
  }
  const float factor = amplitude / Loudest(lastHeard);
  for (float& volume : volumes) {
    volume = volume == Loudest(lastHeard) ? amplitude : volume * factor;
  }
  return volumes;
}

}  // namespace

int sound_manager_get_device_mute(int device, bool* muted) {
  if (device != kTvSpeaker || muted == nullptr) {
    return kSoundOutOfRange;
  }
  return DoWithReference([&](OutputSound& sound) { *muted = *sound.Get().isMuted; });
}

int sound_manager_set_device_mute(int device, bool muted) {
  if (device != kTvSpeaker) {
    return kSoundOutOfRange;
  }
  return DoWithReference([&](OutputSound& sound) { sound.Set({muted, {}}); });
}

int sound_manager_get_tv_master_volume(std::int32_t* level) {
  if (level == nullptr) {
    return kSoundOutOfRange;
  }
  return DoWithReference(
      [&](OutputSound& sound) { *level = orvex::pipewire::VolumeOf(Loudest(sound.Get().channelVolumes)); });
}

int sound_manager_set_tv_master_volume(std::int32_t level) {
  if (level < 0 || level > orvex::pipewire::kMaximumVolume) {
    return kSoundOutOfRange;
  }
  return DoWithReference([&](OutputSound& sound) {
    const float amplitude = orvex::pipewire::AmplitudeOf(level);
    sound.Set({std::nullopt, WithLoudest(sound.Get().channelVolumes, amplitude)});
  });
}

int sound_manager_get_speaker_selection(std::int32_t* selection) {
  if (selection == nullptr) {
    return kSoundOutOfRange;
  }
  return DoWithReference([&](OutputSound& /*sound*/) { *selection = kOutputBesideTheSpeaker; });
}
