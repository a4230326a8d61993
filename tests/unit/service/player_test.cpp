// Stopping and playing again: which worker, device and samples there are then, and who is called.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "unit/service/player_support.h"

namespace {

using namespace orvex::test;
using orvex::world::PoolJob;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Player = PlayerTest;

// Notes whether the player holds samples when it calls its owner and when it closes the device.
class PlayerSamples : public Player {
protected:
  PlayerSamples() {
    world.onCall = [this](const std::string& call) {
      if (call == "end callback" || call == "cancel callback" || call == "snd_pcm_close() = 0") {
        sights.push_back(call + (SamplesAreHeld() ? ", samples held" : ", samples free"));
      }
    };
  }
  ~PlayerSamples() override { world.onCall = nullptr; }
  PlayerSamples(const PlayerSamples&) = delete;
  PlayerSamples& operator=(const PlayerSamples&) = delete;

  Texts sights;
};

TEST_F(PlayerSamples, AreFreedBeforeTheOwnerIsCalledAtTheEnd) {
  PlayWave();
  Rest();
  EXPECT_THAT(sights, ElementsAre("end callback, samples free", "snd_pcm_close() = 0, samples free"));
}

TEST_F(PlayerSamples, AreFreedBetweenDeviceAndOwnerAfterACancel) {
  PlayWave();
  world.AdvanceMs(0);
  StopWave();
  Rest();
  EXPECT_THAT(sights, ElementsAre("snd_pcm_close() = 0, samples held", "cancel callback, samples free"));
}

TEST_F(Player, ThatStopsTwiceHasNoWorkerTheSecondTime) {
  PlayWave();
  StopWave();
  Rest();
  EXPECT_THAT(StopWave(), ElementsAreArray(Concat({{"E2 already thread stop"}, ClosedDeviceIsLeft()})));
}

// The pool has taken the finished worker's handle back.
TEST_F(Player, ThatStopsAfterANormalEndCancelsNobody) {
  PlayWave();
  Rest();
  EXPECT_THAT(StopWave(), ElementsAre("I0 cancel_thread", "> ecore_thread_cancel(null)"));
  EXPECT_THAT(Rest(), IsEmpty());
  EXPECT_THAT(StopWave(), ElementsAreArray(Concat({{"E2 already thread stop"}, ClosedDeviceIsLeft()})));
}

TEST_F(Player, WhoseWorkerCouldNotStartPlaysOnTheOpenDeviceNextTime) {
  world.answers.Next("ecore_thread_run", {0});
  PlayWave();
  EXPECT_THAT(PlayWave(), ElementsAre("I0 start Player ", "W0 alsa device alreay open", "> ecore_thread_run()"));
  EXPECT_TRUE(started);
  Rest();
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(Player, PlaysAgainAfterANormalEndAndNotesTheFinishedWorker) {
  PlayWave();
  Rest();
  world.samplesTaken.clear();
  EXPECT_EQ(PlayWave().front(), "I0 m_PlayerThread already Started");
  Rest();
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(Player, PlaysAgainAfterACancelAsIfForTheFirstTime) {
  const Texts first = PlayWave();
  StopWave();
  Rest();
  EXPECT_THAT(PlayWave(), ElementsAreArray(first));
  Rest();
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(Player, ThatCannotOpenTheDeviceAgainStillNotesTheFinishedWorker) {
  PlayWave();
  Rest();
  world.answers.Next("snd_pcm_open", {-EBUSY});
  EXPECT_THAT(PlayWave(), ElementsAre("I0 m_PlayerThread already Started", "I0 start Player ",
                                      "> snd_pcm_open(\"hw:0,8\", playback, 0) = -16", "E2 Assertion failed"));
  EXPECT_FALSE(started);
}

TEST_F(Player, WithNobodyToCallEndsAndCancelsAllTheSame) {
  player->Prepare("/res/sound/test.wav", nullptr, nullptr, nullptr);
  PlayWave();
  EXPECT_THAT(From(Rest(), "I0 m_EndPlayerCB"), ElementsAreArray(Concat({{"I0 m_EndPlayerCB"}, DeviceIsClosed()})));
  PlayWave();
  StopWave();
  EXPECT_THAT(From(Rest(), "I0 m_CancelPlayCB"), ElementsAreArray(Concat({{"I0 m_CancelPlayCB"}, DeviceIsClosed()})));
}

TEST_F(Player, WhoseWorkerIsCalledWithoutAPlayerRefuses) {
  PlayWave();
  Rest();
  const PoolJob& job = world.poolJobs.front();
  EXPECT_THAT(During(world, [&] { job.body(nullptr, nullptr); }), ElementsAre("I0 m_StartPlay", "E2 Assertion failed"));
  EXPECT_THAT(During(world, [&] { job.end(nullptr, nullptr); }),
              ElementsAre("I0 m_EndPlayerCB", "E2 Assertion failed"));
  EXPECT_THAT(During(world, [&] { job.cancel(nullptr, nullptr); }),
              ElementsAre("I0 m_CancelPlayCB", "E2 Assertion failed"));
}

// The worker's body runs twice before its end function. The second time it does not read the file, which has changed.
TEST_F(Player, ThatHoldsSamplesPlaysThemAgainWithoutLoading) {
  PlayWave();
  Rest();
  const PoolJob job = world.poolJobs.front();
  world.answers.Next("ecore_thread_run", {0});
  PlayWave();
  job.body(player.get(), nullptr);
  file.Write(WaveOf(Sound(4)));
  world.samplesTaken.clear();
  EXPECT_THAT(During(world, [&] { job.body(player.get(), nullptr); }),
              ElementsAreArray(Concat({{"I0 m_StartPlay", "I0 ", "E2 audio data is not null"},
                                       PlayBegins(),
                                       ChunkIsCopied(0, 256, 128),
                                       ChunkIsWritten(32),
                                       ChunkIsCopied(128, 128, 128),
                                       ChunkIsWritten(32)})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
  EXPECT_TRUE(SamplesAreHeld());
  job.end(player.get(), nullptr);
  EXPECT_FALSE(SamplesAreHeld());
}

TEST_F(Player, ThatNeverPlayedEndsWithAClosedDevice) {
  EXPECT_THAT(During(world, [this] { player.reset(); }),
              ElementsAreArray(Concat(
                  {{"E2 already thread stop"}, ClosedDeviceIsLeft(), ClosedDeviceIsLeft(), ClosedDeviceIsLeft()})));
}

TEST_F(Player, WithAnOpenDeviceClosesItOnceAtItsOwnEnd) {
  world.answers.Next("ecore_thread_run", {0});
  PlayWave();
  EXPECT_THAT(During(world, [this] { player.reset(); }),
              ElementsAreArray(
                  Concat({{"E2 already thread stop"}, DeviceIsClosed(), ClosedDeviceIsLeft(), ClosedDeviceIsLeft()})));
}

TEST_F(Player, ThatHasPlayedHasNobodyToCancelAtItsOwnEnd) {
  PlayWave();
  Rest();
  EXPECT_THAT(During(world, [this] { player.reset(); }),
              ElementsAreArray(Concat(
                  {{"I0 cancel_thread", "> ecore_thread_cancel(null)"}, ClosedDeviceIsLeft(), ClosedDeviceIsLeft()})));
  EXPECT_THAT(Rest(), IsEmpty());
}

}  // namespace
