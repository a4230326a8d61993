// The sound manager in virtual time.
#include "orvex/platform/sound_manager.h"

#include "world/world.h"

using orvex::world::World;

namespace {

constexpr int kBadArgument = -2;

int Result(const char* function, bool isGood = true) {
  return static_cast<int>(World::Current().answers.Take(function).value_or(isGood ? 0 : kBadArgument));
}

bool IsSpeaker(int device) {
  return device == 0;
}

}  // namespace

int sound_manager_get_device_mute(int device, bool* muted) {
  const int result = Result("sound_manager_get_device_mute", IsSpeaker(device));
  if (result == 0) {
    *muted = World::Current().muted;
  }
  World::Current().Call("sound_manager_get_device_mute(" + std::to_string(device) + ") = " + std::to_string(result));
  return result;
}

int sound_manager_set_device_mute(int device, bool muted) {
  World& world = World::Current();
  const int result = Result("sound_manager_set_device_mute", IsSpeaker(device));
  if (result == 0) {
    world.muted = muted;
    if (world.room != nullptr) {
      world.room->SetTvMuted(muted);
    }
  }
  world.Call("sound_manager_set_device_mute(" + std::to_string(device) + ", " + (muted ? "true" : "false") +
             ") = " + std::to_string(result));
  return result;
}

int sound_manager_get_tv_master_volume(std::int32_t* level) {
  const int result = Result("sound_manager_get_tv_master_volume");
  if (result == 0) {
    *level = World::Current().volume;
  }
  World::Current().Call("sound_manager_get_tv_master_volume() = " + std::to_string(result));
  return result;
}

int sound_manager_set_tv_master_volume(std::int32_t level) {
  const int result = Result("sound_manager_set_tv_master_volume", level >= 0 && level <= 100);
  if (result == 0) {
    World::Current().volume = level;
  }
  World::Current().Call("sound_manager_set_tv_master_volume(" + std::to_string(level) +
                        ") = " + std::to_string(result));
  return result;
}

int sound_manager_get_speaker_selection(std::int32_t* selection) {
  const int result = Result("sound_manager_get_speaker_selection");
  if (result == 0) {
    *selection = World::Current().speaker;
  }
  World::Current().Call("sound_manager_get_speaker_selection() = " + std::to_string(result));
  return result;
}
