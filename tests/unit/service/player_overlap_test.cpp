// A sound that is asked for while a stopped one is still written: one worker at a time, one open device at a time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "unit/service/player_support.h"

namespace {

using namespace orvex::test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// A sound of 2 s that was stopped after 0.3 s; its worker goes on writing.
class PlayerOverlap : public PlayerTest {
protected:
  PlayerOverlap() {
    world.pcmLimits = {};
    file.Write(WaveOf(longSound));
    PlayWave();
    world.AdvanceMs(300);
    StopWave();
  }

  // Both count from the stop on.
  int Opened() const { return world.journal.CountStartingWith("> snd_pcm_open("); }
  int Closed() const { return world.journal.CountStartingWith("> snd_pcm_close("); }

  const Bytes longSound = Sound(2 * 48000 * 4);
};

TEST_F(PlayerOverlap, ANewSoundUsesTheOpenDeviceAndStartsNoSecondWorker) {
  EXPECT_THAT(PlayWave(), ElementsAre("I0 start Player ", "W0 alsa device alreay open"));
  EXPECT_TRUE(started);
  EXPECT_EQ(world.poolJobs.size(), 1U);
  Rest();
  EXPECT_FALSE(SamplesAreHeld());
}

TEST_F(PlayerOverlap, TheNewSoundBeginsWhenTheStoppedOneHasBeenWritten) {
  PlayWave();
  Rest();
  const Texts lines = From(world.journal.Texts(), "I0 m_CancelPlayCB");
  EXPECT_THAT(FirstOf(lines, 8),
              ElementsAreArray(Concat({{"I0 m_CancelPlayCB"},
                                       DeviceIsClosed(),
                                       {"> cancel callback", "> snd_pcm_open(\"hw:0,8\", playback, 0) = 0"}})));
  EXPECT_THAT(LastOf(lines, 7), ElementsAreArray(PlayEnds()));
  EXPECT_EQ(world.samplesTaken.size(), 2 * SamplesIn(longSound).size());
  EXPECT_EQ(world.journal.Count("> ecore_thread_run()"), 1);
  EXPECT_EQ(world.journal.Count("> cancel callback"), 1);
  EXPECT_EQ(world.journal.Count("> end callback"), 1);
  EXPECT_EQ(Opened(), 1);
  EXPECT_EQ(Closed(), 2);
}

TEST_F(PlayerOverlap, ANewSoundThatIsStoppedBeforeItBeganIsNeverPlayed) {
  PlayWave();
  EXPECT_THAT(StopWave(), ElementsAre("E2 already thread stop")) << "the device stays open for the worker";
  Rest();
  EXPECT_EQ(world.samplesTaken, SamplesIn(longSound));
  EXPECT_EQ(world.poolJobs.size(), 1U);
  EXPECT_EQ(world.journal.Count("> cancel callback"), 1);
  EXPECT_EQ(Closed(), 1);
}

TEST_F(PlayerOverlap, ANewSoundIsPlayedOnceHoweverOftenItIsStoppedAndAskedFor) {
  for (int i = 0; i < 3; ++i) {
    PlayWave();
    StopWave();
  }
  PlayWave();
  Rest();
  EXPECT_EQ(world.poolJobs.size(), 2U);
  EXPECT_EQ(world.samplesTaken.size(), 2 * SamplesIn(longSound).size());
  EXPECT_EQ(world.journal.Count("> end callback"), 1);
}

TEST_F(PlayerOverlap, ANewSoundCanBeStoppedAsAnyOtherOnceItHasBegun) {
  PlayWave();
  world.AdvanceMs(2000);
  EXPECT_THAT(StopWave(), ElementsAre("I0 cancel_thread", "> ecore_thread_cancel()"));
  Rest();
  EXPECT_EQ(world.journal.Count("> cancel callback"), 1);
  EXPECT_EQ(Closed(), 1);
  EXPECT_EQ(world.poolJobs.size(), 2U);
}

TEST_F(PlayerOverlap, ANewSoundWhoseDeviceCannotBeOpenedAnyMoreIsNotPlayed) {
  PlayWave();
  world.answers.Next("snd_pcm_open", {-EBUSY});
  EXPECT_EQ(Rest().back(), "E2 Assertion failed");
  EXPECT_EQ(world.poolJobs.size(), 1U);
  EXPECT_THAT(StopWave(), ElementsAreArray(Concat({{"E2 already thread stop"}, ClosedDeviceIsLeft()})));
}

TEST_F(PlayerOverlap, ANewSoundWhoseWorkerCannotStartKeepsTheDeviceForTheStop) {
  PlayWave();
  world.answers.Next("ecore_thread_run", {0});
  EXPECT_EQ(Rest().back(), "E2 Assertion failed");
  EXPECT_THAT(StopWave(), ElementsAreArray(Concat({{"E2 already thread stop"}, DeviceIsClosed()})));
}

TEST_F(PlayerOverlap, ASoundThatWasNotStoppedIsFollowedByTheNewOneToo) {
  Rest();
  player->PlayWave();
  world.AdvanceMs(300);
  EXPECT_THAT(PlayWave(),
              ElementsAre("I0 m_PlayerThread already Started", "I0 start Player ", "W0 alsa device alreay open"));
  Rest();
  EXPECT_EQ(world.journal.Count("> end callback"), 2);
  EXPECT_EQ(world.poolJobs.size(), 3U);
  EXPECT_EQ(world.samplesTaken.size(), 3 * SamplesIn(longSound).size()) << "on a device that is open";
  EXPECT_THAT(Rest(), IsEmpty());
}

}  // namespace
