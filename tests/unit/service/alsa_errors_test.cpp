// A write that fails: whether the player loses the rest of the chunk, waits, or writes nothing more.
#include <cerrno>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using orvex::world::Lane;
using orvex::world::Time;
using testing::ElementsAreArray;

using AlsaErrors = TwoChunks;

TEST_F(AlsaErrors, AChunkForWhichTheDeviceCannotBePreparedIsSkipped) {
  world.answers.Next("snd_pcm_prepare", {-EBUSY});
  EXPECT_THAT(Play(),
              ElementsAreArray(Concat({PlayBegins(),
                                       ChunkIsCopied(0, 256, 128),
                                       {"> snd_pcm_prepare() = -16", "E2 Prepare error: Device or resource busy"},
                                       SecondChunkAfterPrepare()})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound, 128, 256));
}

TEST_F(AlsaErrors, APrepareThatAnswersAPositiveNumberHasWorked) {
  world.answers.Next("snd_pcm_prepare", {1});
  world.answers.Next("snd_pcm_writei", {32});
  Play();
  EXPECT_EQ(world.journal.CountStartingWith("E2 Prepare error"), 0);
  EXPECT_EQ(world.journal.CountStartingWith("I0 pcm start writing"), 2);
}

TEST_F(AlsaErrors, ADeviceThatIsNotReadyIsWaitedForAndWrittenAgain) {
  world.answers.Next("snd_pcm_writei", {-EAGAIN, 12, -EAGAIN, -EAGAIN});
  world.answers.Next("snd_pcm_wait", {1, 0, -EPIPE});
  EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, -11)),
                                               {"E2 write wait : read_size:32, cnt:-11", "> snd_pcm_wait(1000) = 1"},
                                               WriteOf(32, 12),
                                               WriteOf(20, -11),
                                               {"E2 write wait : read_size:20, cnt:-11", "> snd_pcm_wait(1000) = 0"},
                                               WriteOf(20, -11),
                                               {"E2 write wait : read_size:20, cnt:-11", "> snd_pcm_wait(1000) = -32"},
                                               WriteOf(20, 20),
                                               SecondChunk()})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(AlsaErrors, ADeviceThatIsNotReadyTakesItsTime) {
  world.answers.Next("snd_pcm_writei", {-EAGAIN, -EAGAIN, -EAGAIN});
  const Time begin = world.scheduler.Now();
  Play();
  EXPECT_GE(world.scheduler.Now() - begin, std::chrono::seconds(3));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

TEST_F(AlsaErrors, AChunkOfNoFramesEndsWhenTheDeviceIsNotReady) {
  audio.Destroy();
  world.answers.Next("snd_pcm_frames_to_bytes", {0});
  audio.Open();
  world.answers.Next("snd_pcm_writei", {-EAGAIN});
  world.answers.Next("snd_pcm_wait", {1});
  EXPECT_THAT(Play(), ElementsAreArray(Concat({PlayBegins(),
                                               ChunkIsCopied(0, 256, 128),
                                               DeviceIsPrepared(),
                                               WritingBegins(0),
                                               WriteOf(0, -11),
                                               {"E2 write wait : read_size:0, cnt:-11", "> snd_pcm_wait(1000) = 1"},
                                               ChunkIsCopied(128, 128, 128),
                                               ChunkIsWritten(0)})));
}

TEST_F(AlsaErrors, AnUnderrunLosesTheRestOfItsChunkOnly) {
  world.answers.Next("snd_pcm_writei", {12, -EPIPE});
  EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, 12)),
                                               WriteOf(20, -32),
                                               {"E2 write error: read_size:20, cnt:-32, why:Broken pipe",
                                                "E2 under run. state[4]", "> snd_pcm_recover(-32, 0) = 0"},
                                               SecondChunk()})));
  std::vector<std::int16_t> expected = SamplesIn(sound, 0, 48);
  const std::vector<std::int16_t> second = SamplesIn(sound, 128, 256);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(world.samplesTaken, expected);
}

TEST_F(AlsaErrors, ADeviceThatRanDryBetweenTwoPlaysLosesTheFirstChunk) {
  Play();
  world.samplesTaken.clear();
  world.AdvanceMs(100);
  EXPECT_THAT(Play(), ElementsAreArray(Concat({PlayBegins(),
                                               ChunkIsCopied(0, 256, 128),
                                               WritingBegins(32),
                                               WriteOf(32, -32),
                                               {"E2 write error: read_size:32, cnt:-32, why:Broken pipe",
                                                "E2 under run. state[4]", "> snd_pcm_recover(-32, 0) = 0"},
                                               SecondChunk()})));
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound, 128, 256));
}

TEST_F(AlsaErrors, ARecoveryThatAnswersAPositiveNumberHasWorked) {
  world.answers.Next("snd_pcm_writei", {-EPIPE, 32});
  world.answers.Next("snd_pcm_recover", {1});
  Play();
  EXPECT_EQ(world.journal.Count("E2 write error: drop..."), 0);
}

TEST_F(AlsaErrors, AnUnderrunThatCannotBeRecoveredDropsAndPreparesAnew) {
  world.answers.Next("snd_pcm_writei", {-EPIPE});
  world.answers.Next("snd_pcm_recover", {-EIO});
  EXPECT_THAT(Play(), ElementsAreArray(
                          Concat({FirstChunk(WriteOf(32, -32)),
                                  {"E2 write error: read_size:32, cnt:-32, why:Broken pipe", "E2 under run. state[4]",
                                   "> snd_pcm_recover(-32, 0) = -5", "E2 write error: drop...", "> snd_pcm_drop() = 0"},
                                  SecondChunkAfterPrepare()})));
}

// An error that gets no treatment of its own.
struct OtherError {
  long error;
  const char* text;
};

TEST_F(AlsaErrors, AnyOtherErrorDropsAndPreparesAnew) {
  for (const OtherError& other :
       {OtherError{-EIO, "Input/output error"}, OtherError{-EBADFD, "File descriptor in bad state"},
        OtherError{-EINTR, "Interrupted system call"}, OtherError{-EINVAL, "Invalid argument"},
        OtherError{-EPERM, "Operation not permitted"}}) {
    audio.Destroy();
    audio.Open();
    world.samplesTaken.clear();
    world.answers.Next("snd_pcm_writei", {12, other.error});
    const std::string error = std::to_string(other.error);
    EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, 12)),
                                                 WriteOf(20, static_cast<int>(other.error)),
                                                 {"E2 write error: read_size:20, cnt:" + error + ", why:" + other.text},
                                                 DeviceIsDropped(),
                                                 SecondChunkAfterPrepare()})));
    EXPECT_EQ(world.samplesTaken.size(), 24U + 64U);
  }
}

TEST_F(AlsaErrors, ADropThatFailsDoesNotEndThePlay) {
  world.answers.Next("snd_pcm_writei", {-EIO});
  world.answers.Next("snd_pcm_drop", {-EIO});
  EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, -5)),
                                               {"E2 write error: read_size:32, cnt:-5, why:Input/output error",
                                                "E2 write error: drop...", "> snd_pcm_drop() = -5"},
                                               SecondChunk()})));
}

// Only a device in the state SETUP is prepared, which one that is gone is not; each chunk is still written to it once.
TEST_F(AlsaErrors, ADeviceThatIsGoneIsTriedOncePerChunk) {
  world.answers.Next("snd_pcm_writei", {12, -ENODEV});
  const Texts gone = {"cnt:-19, why:No such device", "E2 write error: drop...", "> snd_pcm_drop() = -19"};
  EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, 12)),
                                               WriteOf(20, -19),
                                               {"E2 write error: read_size:20, " + gone[0], gone[1], gone[2]},
                                               ChunkIsCopied(128, 128, 128),
                                               WritingBegins(32),
                                               WriteOf(32, -19),
                                               {"E2 write error: read_size:32, " + gone[0], gone[1], gone[2]}})));
}

TEST_F(AlsaErrors, AnErrorInEveryWriteEndsWithTheSound) {
  world.answers.Always("snd_pcm_writei", -EIO);
  const std::vector<std::uint8_t> longSound = Sound(100 * 128);
  audio.Play(longSound.data(), 100 * 128);
  EXPECT_EQ(world.journal.Count("> snd_pcm_writei(32) = -5"), 100);
  EXPECT_EQ(world.journal.Count("E2 write error: drop..."), 100);
  EXPECT_EQ(world.journal.Count("> snd_pcm_prepare() = 0"), 100);
}

TEST_F(AlsaErrors, ADeviceThatIsClosedDuringAPlayIsNotWrittenTo) {
  world.answers.Next("snd_pcm_writei", {-ESTRPIPE});
  world.answers.Next("snd_pcm_resume", {-EAGAIN, -ENODEV});
  world.answers.Next("snd_pcm_recover", {-ENODEV});
  world.answers.Next("snd_pcm_drop", {0, -EBADFD});
  world.scheduler.At(world.scheduler.Now() + std::chrono::milliseconds(500), Lane::kElsewhere,
                     [this] { audio.Destroy(); });
  EXPECT_THAT(From(Play(), "E2 write error: drop..."),
              ElementsAreArray(Concat({{"E2 write error: drop...", "> snd_pcm_drop() = -77"},
                                       ChunkIsCopied(128, 128, 128),
                                       {"E2 alsa device not open"}})));
}

}  // namespace
