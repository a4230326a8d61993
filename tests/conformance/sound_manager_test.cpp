// The sound manager: mute and volume as they were set, the selected output, and how an operation fails.
#include "orvex/platform/sound_manager.h"
#include "conformance/port_test.h"
#include "conformance/unreachable_sound.h"

namespace orvex::conformance {
namespace {

constexpr int kNoDevice = -1;

// Puts mute and volume back behind each test.
class SoundManager : public PortTest {
protected:
  SoundManager() {
    sound_manager_get_device_mute(kTvSpeaker, &m_MutedBefore);
    sound_manager_get_tv_master_volume(&m_VolumeBefore);
  }
  ~SoundManager() override {
    sound_manager_set_device_mute(kTvSpeaker, m_MutedBefore);
    sound_manager_set_tv_master_volume(m_VolumeBefore);
  }

  void SetUp() override { ORVEX_NEEDS(kSoundManager); }

  static std::int32_t Volume() {
    std::int32_t volume = -1;
    EXPECT_EQ(sound_manager_get_tv_master_volume(&volume), kSoundDone);
    return volume;
  }
  static bool IsMuted() {
    bool muted = false;
    EXPECT_EQ(sound_manager_get_device_mute(kTvSpeaker, &muted), kSoundDone);
    return muted;
  }

private:
  bool m_MutedBefore = false;
  std::int32_t m_VolumeBefore = 0;
};

TEST_F(SoundManager, MutesAndUnmutesTheSpeaker) {
  OnMainLoop([] {
    for (const bool muted : {true, false, false, true}) {
      EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, muted), kSoundDone);
      EXPECT_EQ(IsMuted(), muted);
    }
  });
}

TEST_F(SoundManager, SetsEveryVolume) {
  OnMainLoop([] {
    for (std::int32_t volume = 0; volume <= 100; ++volume) {
      EXPECT_EQ(sound_manager_set_tv_master_volume(volume), kSoundDone);
      EXPECT_EQ(Volume(), volume);
    }
  });
}

TEST_F(SoundManager, KeepsMuteAndVolumeApart) {
  OnMainLoop([] {
    EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, false), kSoundDone);
    EXPECT_EQ(sound_manager_set_tv_master_volume(0), kSoundDone);
    EXPECT_FALSE(IsMuted());
    EXPECT_EQ(sound_manager_set_tv_master_volume(30), kSoundDone);
    EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, true), kSoundDone);
    EXPECT_EQ(Volume(), 30);
  });
}

TEST_F(SoundManager, RefusesAVolumeOutOfRangeAndKeepsTheOldOne) {
  OnMainLoop([] {
    EXPECT_EQ(sound_manager_set_tv_master_volume(42), kSoundDone);
    for (const std::int32_t volume : {-1, 101, INT32_MIN, INT32_MAX}) {
      EXPECT_EQ(sound_manager_set_tv_master_volume(volume), kSoundOutOfRange) << volume;
      EXPECT_EQ(Volume(), 42) << volume;
    }
  });
}

TEST_F(SoundManager, KnowsNoOtherDevice) {
  OnMainLoop([] {
    EXPECT_EQ(sound_manager_set_device_mute(kTvSpeaker, false), kSoundDone);
    EXPECT_EQ(sound_manager_set_device_mute(kNoDevice, true), kSoundOutOfRange);
    EXPECT_FALSE(IsMuted());
    for (const bool before : {true, false}) {
      bool muted = before;
      EXPECT_EQ(sound_manager_get_device_mute(kNoDevice, &muted), kSoundOutOfRange);
      EXPECT_EQ(muted, before);
    }
  });
}

TEST_F(SoundManager, TellsTheSelectedOutput) {
  ORVEX_NEEDS(kSelectSpeaker);
  OnMainLoop([&] {
    for (const std::int32_t selected : {0, 3}) {
      Port().SelectSpeaker(selected);
      std::int32_t selection = -1;
      EXPECT_EQ(sound_manager_get_speaker_selection(&selection), kSoundDone);
      EXPECT_EQ(selection, selected);
    }
  });
}

TEST_F(SoundManager, ThatCannotBeReachedLeavesTargetsUntouched) {
  ORVEX_NEEDS(kBreakSoundManager);
  Port().Break(Ability::kBreakSoundManager);
  OnMainLoop(ExpectUnreachableSound);
}

}  // namespace
}  // namespace orvex::conformance
