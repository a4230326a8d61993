// The speaker guard in the life of the service: when it prepares, when it restores, and what the owner then hears.
#include <gmock/gmock.h>

#include "support/journal.h"
#include "unit/service/run_support.h"

namespace {

using orvex::test::During;
using orvex::test::FromTo;
using orvex::test::Run;
using orvex::test::Texts;
using testing::ElementsAre;

constexpr char kOpticalKey[] = "db/device-detector-service/optical_change_flag";
constexpr std::int32_t kExit = 10007;

class MutedTelevision : public Run {
protected:
  MutedTelevision() {
    world.muted = true;
    world.volume = 15;
    world.speaker = 1;
  }
  int SoundManagerCalls() const { return world.journal.CountStartingWith("> sound_manager_"); }
};

TEST_F(MutedTelevision, IsPreparedAfterTheSubscriptionAndBeforeTheFirstEvent) {
  const std::string subscription = "> settings_subscribe(\"db/device-detector-service/optical_change_flag\") = 0";
  const Texts texts = During(world, [this] { world.Create(app); });
  EXPECT_THAT(FromTo(texts, subscription, "> SendEvent(10000)"),
              ElementsAre(subscription, "> sound_manager_get_device_mute(0) = 0", "I0 TV speaker mute status.[1]",
                          "> sound_manager_get_tv_master_volume() = 0", "I0 TV speaker volume value.[15]",
                          "> sound_manager_set_tv_master_volume(0) = 0",
                          "> sound_manager_set_device_mute(0, false) = 0", "> SendEvent(10000)"));
  app.t_OnDestroy();
}

TEST_F(MutedTelevision, IsRestoredAfterTheWorkersAndTheTimerAndBeforeTheAlarmEnds) {
  StartRecording();
  world.Inject(kExit);
  const Texts texts = During(world, [this] { EXPECT_TRUE(world.RunToEnd()); });
  EXPECT_THAT(FromTo(texts, "I0 stop Sound Player", "> FwAlarm::Destroy()"),
              ElementsAre("I0 stop Sound Player", "I0 Sound Player is not started", "> ecore_timer_del()", "I0 ",
                          "I0 need to restore volume. original mute value[1]",
                          "> sound_manager_get_speaker_selection() = 0", "I0 current speaker [1]",
                          "> sound_manager_set_device_mute(0, true) = 0", "I0 original volume value[15]",
                          "> sound_manager_set_tv_master_volume(15) = 0", "> FwAlarm::Destroy()"));
}

TEST_F(MutedTelevision, IsOutOfMuteAtVolumeZeroForAsLongAsTheServiceLives) {
  world.Create(app);
  for (int second = 0; second < 10; ++second) {
    EXPECT_FALSE(world.muted) << second;
    EXPECT_EQ(world.volume, 0) << second;
    world.AdvanceMs(999);
  }
  EXPECT_FALSE(world.HasEnded());
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_TRUE(world.muted);
  EXPECT_EQ(world.volume, 15);
}

TEST_F(MutedTelevision, StaysAudibleAtItsOldVolumeAfterAChangeOfTheOpticalFlag) {
  StartRecording();
  world.ChangeSetting(kOpticalKey, 1);
  const Texts texts = During(world, [this] { EXPECT_TRUE(world.RunToEnd()); });
  EXPECT_THAT(FromTo(texts, "> ecore_timer_del()", "> FwAlarm::Destroy()"),
              ElementsAre("> ecore_timer_del()", "I0 ", "I0 original volume value[15]",
                          "> sound_manager_set_tv_master_volume(15) = 0", "> FwAlarm::Destroy()"))
      << "not even the selection is asked for";
  EXPECT_FALSE(world.muted);
  EXPECT_EQ(world.volume, 15);
}

TEST_F(MutedTelevision, IsMutedAgainAfterANotificationThatNamesAnotherKey) {
  StartRecording();
  world.NotifySetting(kOpticalKey, "db/device-detector-service/optical_change_flag/old");
  world.AdvanceMs(1);
  world.Inject(kExit);
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
  world.journal.Clear();
  app.t_OnDestroy();
  EXPECT_EQ(SoundManagerCalls(), 0);
  EXPECT_EQ(world.volume, 15);
}

TEST_F(MutedTelevision, IsOnlyAskedForItsMuteWhenItIsNotMuted) {
  world.muted = false;
  StartRecording();
  EXPECT_EQ(SoundManagerCalls(), 0) << "since the create step";
  world.ChangeSetting(kOpticalKey, 1);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_EQ(SoundManagerCalls(), 0);
  EXPECT_FALSE(world.muted);
  EXPECT_EQ(world.volume, 15);
}

}  // namespace
