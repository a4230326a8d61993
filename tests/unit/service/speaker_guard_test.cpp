// The speaker guard: what it restores and what it leaves alone, whatever the sound manager answers.
#include "Application/OrvexApp.h"
#include "orvex/platform/sound_manager.h"
#include "unit/service/manager_support.h"

namespace {

using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::test::ManagerTest;
using orvex::test::Texts;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SpeakerGuard : public ManagerTest {
protected:
  void Prepare() { manager.m_PrepareVolumeCondition(); }
  // The calls of a restoration.
  Texts Restore() {
    world.journal.Clear();
    manager.m_RestoreVolumeCondition();
    return world.journal.Calls();
  }
  void BeMutedAtVolume(std::int32_t volume) {
    world.muted = true;
    world.volume = volume;
  }
  void ExpectSpeaker(bool muted, std::int32_t volume) const {
    EXPECT_EQ(world.muted, muted);
    EXPECT_EQ(world.volume, volume);
  }
};

TEST_F(SpeakerGuard, MutesAgainWhicheverOtherOutputIsSelected) {
  for (const std::int32_t speaker : {1, 2, -1, INT32_MIN, INT32_MAX}) {
    BeMutedAtVolume(15);
    world.speaker = speaker;
    Prepare();
    ExpectSpeaker(false, 0);
    Restore();
    EXPECT_TRUE(world.journal.Has("I0 current speaker [" + std::to_string(speaker) + "]"));
    ExpectSpeaker(true, 15);
  }
}

TEST_F(SpeakerGuard, SaysWhichStepAnEmptyLineBelongsTo) {
  Restore();
  EXPECT_EQ(world.journal.Find("I0 ").function, "m_RestoreVolumeCondition");
}

TEST_F(SpeakerGuard, RestoresNothingWithoutAPreparation) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  EXPECT_THAT(Restore(), IsEmpty());
}

TEST_F(SpeakerGuard, RestoresOnlyOnce) {
  for (const std::int32_t speaker : {0, 1}) {
    BeMutedAtVolume(15);
    world.speaker = speaker;
    Prepare();
    Restore();
    EXPECT_THAT(Restore(), IsEmpty()) << speaker;
  }
}

TEST_F(SpeakerGuard, SavesAnewWhenItPreparesAgain) {
  world.speaker = 1;
  for (const std::int32_t volume : {15, 40}) {
    BeMutedAtVolume(volume);
    Prepare();
    Restore();
    ExpectSpeaker(true, volume);
  }
  world.muted = false;
  Prepare();
  EXPECT_THAT(Restore(), IsEmpty()) << "nothing of the earlier ones is left";
}

TEST_F(SpeakerGuard, PutsBackAnyVolumeThatItCouldRead) {
  world.answers.Always("sound_manager_set_tv_master_volume", kSoundDone);  // a television that takes every volume
  for (const std::int32_t volume : {0, 1, 100, -2, INT32_MIN, INT32_MAX}) {
    BeMutedAtVolume(volume);
    const std::string text = std::to_string(volume);
    EXPECT_THAT(During(world, [this] { Prepare(); }), Contains("I0 TV speaker volume value.[" + text + "]"));
    world.volume = 33;  // somebody turned it meanwhile
    EXPECT_THAT(Restore(), Contains("> sound_manager_set_tv_master_volume(" + text + ") = 0"));
    EXPECT_TRUE(world.journal.Has("I0 original volume value[" + text + "]"));
    EXPECT_EQ(world.volume, volume);
  }
}

TEST_F(SpeakerGuard, TakesAVolumeOfMinusOneForNothingSaved) {
  BeMutedAtVolume(-1);
  Prepare();
  EXPECT_EQ(world.volume, 0);
  EXPECT_THAT(Restore(), ElementsAre("> sound_manager_get_speaker_selection() = 0"));
}

TEST_F(SpeakerGuard, TakesAMuteThatCannotBeReadForNone) {
  BeMutedAtVolume(15);
  world.answers.Always("sound_manager_get_device_mute", kSoundUnreachable);
  EXPECT_THAT(During(world, [this] { Prepare(); }),
              ElementsAre("> sound_manager_get_device_mute(0) = -1", "I0 TV speaker mute status.[0]"));
  EXPECT_THAT(Restore(), IsEmpty());
}

TEST_F(SpeakerGuard, KeepsTheMuteThatItKnewWhenItCannotBeReadAgain) {
  BeMutedAtVolume(15);
  Prepare();
  world.volume = 20;
  world.answers.Next("sound_manager_get_device_mute", {kSoundUnreachable});
  EXPECT_THAT(During(world, [this] { Prepare(); }), Contains("I0 TV speaker mute status.[1]"));
  ExpectSpeaker(false, 0);
  Restore();
  EXPECT_EQ(world.volume, 20);
}

TEST_F(SpeakerGuard, DoesNotPutBackAVolumeThatCouldNotBeRead) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_get_tv_master_volume", kSoundUnreachable);
  EXPECT_THAT(During(world, [this] { Prepare(); }), Contains("I0 TV speaker volume value.[-1]"));
  ExpectSpeaker(false, 0);
  Restore();
  ExpectSpeaker(true, 0);
}

TEST_F(SpeakerGuard, LeavesTheSpeakerAudibleWhenTheSelectionCannotBeRead) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_get_speaker_selection", kSoundUnreachable);
  Prepare();
  Restore();
  EXPECT_TRUE(world.journal.Has("I0 current speaker [0]"));
  ExpectSpeaker(false, 15);
}

TEST_F(SpeakerGuard, TriesEachStepOnceWhenTheSoundManagerRefusesToWrite) {
  BeMutedAtVolume(15);
  world.speaker = 1;
  world.answers.Always("sound_manager_set_tv_master_volume", kSoundOutOfRange);
  world.answers.Always("sound_manager_set_device_mute", kSoundOutOfRange);
  world.journal.Clear();
  Prepare();
  EXPECT_THAT(
      world.journal.Calls(),
      ElementsAre("> sound_manager_get_device_mute(0) = 0", "> sound_manager_get_tv_master_volume() = 0",
                  "> sound_manager_set_tv_master_volume(0) = -2", "> sound_manager_set_device_mute(0, false) = -2"));
  EXPECT_THAT(Restore(), ElementsAre("> sound_manager_get_speaker_selection() = 0",
                                     "> sound_manager_set_device_mute(0, true) = -2",
                                     "> sound_manager_set_tv_master_volume(15) = -2"));
  EXPECT_THAT(Restore(), IsEmpty());
}

// The application on a muted television, whose selected output is another than its speaker.
class MutedTelevision : public testing::Test {
protected:
  MutedTelevision() {
    world.muted = true;
    world.volume = 15;
    world.speaker = 1;
  }
  void StartRecording() {
    world.Create(app);
    world.AdvanceMs(1);
  }
  int SoundManagerCalls() const { return world.journal.CountStartingWith("> sound_manager_"); }

  const DumpFiles dumpFiles;
  orvex::world::World world;
  COrvexApp app;
};

TEST_F(MutedTelevision, IsMutedAgainAfterANotificationThatNamesAnotherKey) {
  StartRecording();
  world.NotifySetting(orvex::world::kOpticalFlagKey, "db/device-detector-service/optical_change_flag/old");
  world.AdvanceMs(1);
  world.Inject(ORVEX_EXIT);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_TRUE(world.muted);
}

TEST_F(MutedTelevision, IsNotTouchedByADestroyStepWithoutACreateStep) {
  app.t_OnDestroy();
  EXPECT_EQ(SoundManagerCalls(), 0);
  EXPECT_TRUE(world.muted);
}

TEST_F(MutedTelevision, IsRestoredByTheFirstOfTwoDestroySteps) {
  StartRecording();
  app.t_OnDestroy();
  EXPECT_TRUE(world.muted);
  world.journal.Clear();
  app.t_OnDestroy();
  EXPECT_EQ(SoundManagerCalls(), 0);
}

}  // namespace
