// The sound manager: three files below the television's sound/.
#include "orvex/platform/sound_manager.h"

#include "virtual/faults.h"
#include "virtual/service_values.h"

namespace {

using orvex::virtual_tv::AccessResult;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

constexpr int kTvSpeaker = 0;
constexpr std::int32_t kMaximumVolume = 100;

int Read(const char* name, std::int64_t* number) {
  return orvex::virtual_tv::ReadNumber(name, number) == AccessResult::kDone ? kSoundDone : kSoundUnreachable;
}

int Write(const char* name, std::int64_t number) {
  return orvex::virtual_tv::WriteNumber(name, number) == AccessResult::kDone ? kSoundDone : kSoundUnreachable;
}

int Read32(const char* name, std::int32_t* target) {
  std::int64_t number = 0;
  const int result = target == nullptr ? kSoundOutOfRange : Read(name, &number);
  if (result == kSoundDone) {
    *target = static_cast<std::int32_t>(number);
  }
  return result;
}

}  // namespace

int sound_manager_get_device_mute(int device, bool* muted) {
  if (const auto fault = Faults::Instance().Next(Fault::kSoundGetMute)) {
    return *fault;
  }
  if (device != kTvSpeaker || muted == nullptr) {
    return kSoundOutOfRange;
  }
  std::int64_t number = 0;
  const int result = Read("sound/mute", &number);
  if (result == kSoundDone) {
    *muted = number != 0;
  }
  return result;
}

int sound_manager_set_device_mute(int device, bool muted) {
  if (const auto fault = Faults::Instance().Next(Fault::kSoundSetMute)) {
    return *fault;
  }
  return device == kTvSpeaker ? Write("sound/mute", muted ? 1 : 0) : kSoundOutOfRange;
}

int sound_manager_get_tv_master_volume(std::int32_t* level) {
  if (const auto fault = Faults::Instance().Next(Fault::kSoundGetVolume)) {
    return *fault;
  }
  return Read32("sound/volume", level);
}

int sound_manager_set_tv_master_volume(std::int32_t level) {
  if (const auto fault = Faults::Instance().Next(Fault::kSoundSetVolume)) {
    return *fault;
  }
  return level >= 0 && level <= kMaximumVolume ? Write("sound/volume", level) : kSoundOutOfRange;
}

int sound_manager_get_speaker_selection(std::int32_t* selection) {
  if (const auto fault = Faults::Instance().Next(Fault::kSoundGetSpeaker)) {
    return *fault;
  }
  return Read32("sound/speaker", selection);
}
