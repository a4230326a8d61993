// The speaker guard: what it asks and tells the sound manager, whatever the sound manager answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "Application/OrvexManager.h"
#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::ElementsAreArray;

class SpeakerGuard : public testing::Test {
protected:
  Texts Prepare() {
    return During(world, [this] { manager.m_PrepareVolumeCondition(); });
  }
  Texts Restore() {
    return During(world, [this] { manager.m_RestoreVolumeCondition(); });
  }
  void BeMutedAtVolume(std::int32_t volume) {
    world.muted = true;
    world.volume = volume;
  }

  orvex::world::World world;
  OrvexManager manager;
};

TEST_F(SpeakerGuard, LeavesASpeakerThatIsNotMutedAlone) {
  world.speaker = 1;
  EXPECT_THAT(Prepare(), ElementsAre("> sound_manager_get_device_mute(0) = 0", "I0 TV speaker mute status.[0]"));
  EXPECT_THAT(Restore(), ElementsAre("I0 "));
  EXPECT_FALSE(world.muted);
  EXPECT_EQ(world.volume, 15);
}

TEST_F(SpeakerGuard, TurnsTheVolumeDownBeforeItTakesAMutedSpeakerOutOfMute) {
  BeMutedAtVolume(15);
  EXPECT_THAT(Prepare(), ElementsAre("> sound_manager_get_device_mute(0) = 0", "I0 TV speaker mute status.[1]",
                                     "> sound_manager_get_tv_master_volume() = 0", "I0 TV speaker volume value.[15]",
                                     "> sound_manager_set_tv_master_volume(0) = 0",
                                     "> sound_manager_set_device_mute(0, false) = 0"));
  EXPECT_FALSE(world.muted);
  EXPECT_EQ(world.volume, 0);
}

TEST_F(SpeakerGuard, PutsMuteBackBeforeTheVolumeWhenAnotherOutputIsSelected) {
  for (const std::int32_t speaker : {1, 2, -1, INT32_MIN, INT32_MAX}) {
    BeMutedAtVolume(15);
    world.speaker = speaker;
    Prepare();
    EXPECT_THAT(Restore(), ElementsAre("I0 ", "I0 need to restore volume. original mute value[1]",
                                       "> sound_manager_get_speaker_selection() = 0",
                                       "I0 current speaker [" + std::to_string(speaker) + "]",
                                       "> sound_manager_set_device_mute(0, true) = 0", "I0 original volume value[15]",
                                       "> sound_manager_set_tv_master_volume(15) = 0"));
    EXPECT_TRUE(world.muted);
    EXPECT_EQ(world.volume, 15);
  }
}

TEST_F(SpeakerGuard, PutsOnlyTheVolumeBackWhenTheTvSpeakerIsSelected) {
  BeMutedAtVolume(15);
  Prepare();
  EXPECT_THAT(Restore(), ElementsAre("I0 ", "I0 need to restore volume. original mute value[1]",
                                     "> sound_manager_get_speaker_selection() = 0", "I0 current speaker [0]",
                                     "I0 original volume value[15]", "> sound_manager_set_tv_master_volume(15) = 0"));
  EXPECT_FALSE(world.muted);
  EXPECT_EQ(world.volume, 15);
}

TEST_F(SpeakerGuard, SaysWhichStepAnEmptyLineBelongsTo) {
  Restore();
  EXPECT_EQ(world.journal.Find("I0 ").function, "m_RestoreVolumeCondition");
}

TEST_F(SpeakerGuard, RestoresNothingWithoutAPreparation) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  EXPECT_THAT(Restore(), ElementsAre("I0 "));
}

TEST_F(SpeakerGuard, RestoresOnlyOnce) {
  for (const std::int32_t speaker : {0, 1}) {
    BeMutedAtVolume(15);
    world.speaker = speaker;
    Prepare();
    Restore();
    EXPECT_THAT(Restore(), ElementsAre("I0 ")) << speaker;
  }
}

TEST_F(SpeakerGuard, SavesAnewWhenItPreparesAgain) {
  world.speaker = 1;
  for (const std::int32_t volume : {15, 40}) {
    BeMutedAtVolume(volume);
    Prepare();
    Restore();
    EXPECT_EQ(world.volume, volume);
    EXPECT_TRUE(world.muted);
  }
  world.muted = false;
  Prepare();
  EXPECT_THAT(Restore(), ElementsAre("I0 ")) << "nothing of the earlier ones is left";
}

TEST_F(SpeakerGuard, PutsBackAnyVolumeThatItCouldRead) {
  world.answers.Always("sound_manager_set_tv_master_volume", 0);  // a television that takes every volume
  for (const std::int32_t volume : {0, 1, 100, -2, INT32_MIN, INT32_MAX}) {
    BeMutedAtVolume(volume);
    const std::string text = std::to_string(volume);
    EXPECT_THAT(Prepare(), testing::Contains("I0 TV speaker volume value.[" + text + "]"));
    world.volume = 33;  // somebody turned it meanwhile
    Restore();
    EXPECT_TRUE(world.journal.Has("I0 original volume value[" + text + "]"));
    EXPECT_TRUE(world.journal.Has("> sound_manager_set_tv_master_volume(" + text + ") = 0"));
    EXPECT_EQ(world.volume, volume);
  }
}

TEST_F(SpeakerGuard, TakesAVolumeOfMinusOneForNothingSaved) {
  BeMutedAtVolume(-1);
  Prepare();
  EXPECT_EQ(world.journal.Count("> sound_manager_set_tv_master_volume(0) = 0"), 1);
  EXPECT_THAT(Restore(), ElementsAre("I0 ", "I0 need to restore volume. original mute value[1]",
                                     "> sound_manager_get_speaker_selection() = 0", "I0 current speaker [0]"));
}

TEST_F(SpeakerGuard, TakesAMuteThatCannotBeReadForNone) {
  BeMutedAtVolume(15);
  world.answers.Always("sound_manager_get_device_mute", -1);
  EXPECT_THAT(Prepare(), ElementsAre("> sound_manager_get_device_mute(0) = -1", "I0 TV speaker mute status.[0]"));
  EXPECT_THAT(Restore(), ElementsAre("I0 "));
}

TEST_F(SpeakerGuard, KeepsTheMuteThatItKnewWhenItCannotBeReadAgain) {
  BeMutedAtVolume(15);
  Prepare();
  world.volume = 20;
  world.answers.Next("sound_manager_get_device_mute", {-1});
  EXPECT_THAT(Prepare(), ElementsAre("> sound_manager_get_device_mute(0) = -1", "I0 TV speaker mute status.[1]",
                                     "> sound_manager_get_tv_master_volume() = 0", "I0 TV speaker volume value.[20]",
                                     "> sound_manager_set_tv_master_volume(0) = 0",
                                     "> sound_manager_set_device_mute(0, false) = 0"));
}

TEST_F(SpeakerGuard, DoesNotPutBackAVolumeThatCouldNotBeRead) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_get_tv_master_volume", -1);
  EXPECT_THAT(Prepare(), ElementsAre("> sound_manager_get_device_mute(0) = 0", "I0 TV speaker mute status.[1]",
                                     "> sound_manager_get_tv_master_volume() = -1", "I0 TV speaker volume value.[-1]",
                                     "> sound_manager_set_tv_master_volume(0) = 0",
                                     "> sound_manager_set_device_mute(0, false) = 0"));
  EXPECT_THAT(Restore(), ElementsAre("I0 ", "I0 need to restore volume. original mute value[1]",
                                     "> sound_manager_get_speaker_selection() = 0", "I0 current speaker [1]",
                                     "> sound_manager_set_device_mute(0, true) = 0"));
}

TEST_F(SpeakerGuard, LeavesTheSpeakerAudibleWhenTheSelectionCannotBeRead) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_get_speaker_selection", -1);
  Prepare();
  EXPECT_THAT(Restore(), ElementsAre("I0 ", "I0 need to restore volume. original mute value[1]",
                                     "> sound_manager_get_speaker_selection() = -1", "I0 current speaker [0]",
                                     "I0 original volume value[15]", "> sound_manager_set_tv_master_volume(15) = 0"));
}

TEST_F(SpeakerGuard, GoesOnWhenTheSoundManagerRefusesToWrite) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_set_tv_master_volume", -2);
  world.answers.Always("sound_manager_set_device_mute", -2);
  const Texts refusals = {
      "> sound_manager_set_tv_master_volume(0) = -2", "> sound_manager_set_device_mute(0, false) = -2",
      "> sound_manager_set_device_mute(0, true) = -2", "> sound_manager_set_tv_master_volume(15) = -2"};
  Texts writes;
  for (const Texts& texts : {Prepare(), Restore(), Restore()}) {
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(writes),
                 [](const std::string& text) { return text.find("_set_") != std::string::npos; });
  }
  EXPECT_THAT(writes, ElementsAreArray(refusals)) << "each is tried once";
}

}  // namespace
