// No sound manager.
#include "orvex/platform/sound_manager.h"

int sound_manager_get_device_mute(int /*device*/, bool* /*muted*/) {
  return kSoundUnreachable;
}

int sound_manager_set_device_mute(int /*device*/, bool /*muted*/) {
  return kSoundUnreachable;
}

int sound_manager_get_tv_master_volume(std::int32_t* /*level*/) {
  return kSoundUnreachable;
}

int sound_manager_set_tv_master_volume(std::int32_t /*level*/) {
  return kSoundUnreachable;
}

int sound_manager_get_speaker_selection(std::int32_t* /*selection*/) {
  return kSoundUnreachable;
}
