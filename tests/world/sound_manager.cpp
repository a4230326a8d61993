// The sound manager in virtual time.
#include "orvex/platform/sound_manager.h"

#include "world/world.h"

using orvex::world::World;

namespace {

int ResultFor(bool isInRange) {
  return isInRange ? kSoundDone : kSoundOutOfRange;
}

bool IsSpeaker(int device) {
  return device == 0;
}

}  // namespace

int sound_manager_get_device_mute(int device, bool* muted) {
  World& world = World::Current();
  return world.Answer("sound_manager_get_device_mute", std::to_string(device), ResultFor(IsSpeaker(device)),
                      [&] { *muted = world.muted; });
}

int sound_manager_set_device_mute(int device, bool muted) {
  World& world = World::Current();
  const std::string arguments = std::to_string(device) + ", " + (muted ? "true" : "false");
  return world.Answer("sound_manager_set_device_mute", arguments, ResultFor(IsSpeaker(device)), [&] {
    world.muted = muted;
    if (world.room != nullptr) {
      world.room->SetTvMuted(muted);
    }
  });
}

int sound_manager_get_tv_master_volume(std::int32_t* level) {
  World& world = World::Current();
  return world.Answer("sound_manager_get_tv_master_volume", "", kSoundDone, [&] { *level = world.volume; });
}

int sound_manager_set_tv_master_volume(std::int32_t level) {
  World& world = World::Current();
  return world.Answer("sound_manager_set_tv_master_volume", std::to_string(level),
                      ResultFor(level >= 0 && level <= 100), [&] { world.volume = level; });
}

int sound_manager_get_speaker_selection(std::int32_t* selection) {
  World& world = World::Current();
  return world.Answer("sound_manager_get_speaker_selection", "", kSoundDone, [&] { *selection = world.speaker; });
}
