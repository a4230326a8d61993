// What every operation of a sound manager answers that cannot be reached.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "orvex/platform/sound_manager.h"

namespace orvex::conformance {

constexpr int kTvSpeaker = 0;

// Each fails and leaves its target untouched.
inline void ExpectUnreachableSound() {
  std::int32_t number = 4711;
  EXPECT_EQ(sound_manager_get_tv_master_volume(&number), kSoundUnreachable);
  EXPECT_EQ(sound_manager_get_speaker_selection(&number), kSoundUnreachable);
  EXPECT_EQ(number, 4711);
  for (const bool before : {true, false}) {
    bool muted = before;
    EXPECT_EQ(sound_manager_get_device_mute(kTvSpeaker, &muted), kSoundUnreachable);
    EXPECT_EQ(muted, before);
  }
  EXPECT_EQ(sound_manager_set_tv_master_volume(10), kSoundUnreachable);
  EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, true), kSoundUnreachable);
}

}  // namespace orvex::conformance
