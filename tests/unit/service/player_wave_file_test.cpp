// What the player makes of its file: which bytes it plays, and what it does without any.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "unit/service/player_support.h"

namespace {

using namespace orvex::test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// A file, and the data size that the player takes from it.
struct SoundFile {
  const char* name;
  Bytes content;
  int length;
  Bytes played;
};

void PrintTo(const SoundFile& soundFile, std::ostream* out) {
  *out << soundFile.name;
}

std::string NameOfFile(const testing::TestParamInfo<SoundFile>& parameter) {
  return parameter.param.name;
}

Bytes Part(const Bytes& bytes, std::size_t from, std::size_t to) {
  return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.begin() + static_cast<std::ptrdiff_t>(to));
}

// `bytes`, and silence up to `size`.
Bytes Padded(Bytes bytes, std::size_t size) {
  bytes.resize(size, 0);
  return bytes;
}

class PlayerWaveFile : public PlayerTest, public testing::WithParamInterface<SoundFile> {};

using PlayerAudibleFile = PlayerWaveFile;

TEST_P(PlayerAudibleFile, IsPlayedByItsFormatAndDataSizeAlone) {
  file.Write(GetParam().content);
  PlayWave();
  const Texts lines = Rest();
  const Texts beginning = Concat({LoadingBegins(), {"I0 buffer length " + std::to_string(GetParam().length)}});
  EXPECT_THAT(FirstOf(lines, beginning.size()), ElementsAreArray(beginning));
  EXPECT_EQ(world.samplesTaken, SamplesIn(GetParam().played));
  EXPECT_EQ(world.journal.Count("E2 Assertion failed"), 0);
  EXPECT_THAT(From(lines, "I0 m_EndPlayerCB"), ElementsAreArray(PlayEnds()));
}

// Other identifiers, 7 channels of float at 8000 Hz: the player reads none of these fields.
Bytes StrangeFormat(const Bytes& sound) {
  Bytes file = WaveOf(sound);
  for (const std::size_t i : {0U, 8U, 12U, 36U}) {
    file[i] = 'x';
  }
  file[20] = 3;
  file[22] = 7;
  file[24] = 0x40;
  file[25] = 0x1F;
  return file;
}

// The 14 bytes of the old format chunk: no bits per sample.
Bytes ShortFormat(const Bytes& sound) {
  return Joined({Part(WaveBeginning(14), 0, 34), ChunkHeader("data", 256), sound});
}

INSTANTIATE_TEST_SUITE_P(
    All, PlayerAudibleFile,
    testing::Values(
        SoundFile{"Canonical", WaveOf(Sound(256)), 256, Sound(256)},
        SoundFile{"FormatOf18Bytes", Joined({WaveBeginning(18, {9, 9}), ChunkHeader("data", 256), Sound(256)}), 256,
                  Sound(256)},
        SoundFile{"FormatOf40Bytes", Joined({WaveBeginning(40, Bytes(24, 9)), ChunkHeader("data", 256), Sound(256)}),
                  256, Sound(256)},
        SoundFile{"FormatOf14Bytes", ShortFormat(Sound(256)), 256, Sound(256)},
        // The player looks for the data header right behind the format chunk's header and takes the rate for the size.
        SoundFile{"FormatOf0Bytes", Joined({WaveBeginning(0), ChunkHeader("data", 256), Sound(256)}), 48000,
                  Padded(Part(Joined({WaveBeginning(0), ChunkHeader("data", 256), Sound(256)}), 28, 300), 48000)},
        SoundFile{"StrangeFormat", StrangeFormat(Sound(256)), 256, Sound(256)},
        SoundFile{"ChunkBetweenFormatAndData",
                  Joined({WaveBeginning(), ChunkHeader("LIST", 8), {1, 2, 3, 4, 5, 6, 7, 8}, WaveOf(Sound(256))}),
                  8,
                  {1, 2, 3, 4, 5, 6, 7, 8}},
        SoundFile{"ChunkBehindData", Joined({WaveOf(Sound(256)), ChunkHeader("LIST", 4), {1, 2, 3, 4}}), 256,
                  Sound(256)},
        SoundFile{"HalfAFrameAtTheEnd", WaveOf(Sound(258)), 258, Sound(256)},
        SoundFile{"LessSoundThanItSays", Joined({WaveBeginning(), ChunkHeader("data", 256), Sound(100)}), 256,
                  Padded(Sound(100), 256)},
        SoundFile{"NoSoundThoughItSays", Joined({WaveBeginning(), ChunkHeader("data", 256)}), 256, Bytes(256, 0)},
        // Two of the four bytes of the size are there; the others count as 0.
        SoundFile{"EndsWithinTheDataSize", Part(Joined({WaveBeginning(), ChunkHeader("data", 256)}), 0, 42), 256,
                  Bytes(256, 0)}),
    NameOfFile);

// Without a size there is nothing to play; the owner is called all the same.
Texts NothingIsPlayed() {
  return Concat({LoadingBegins(), {"I0 buffer length 0", "E2 Assertion failed", "E2 Assertion failed"}, PlayEnds()});
}

using PlayerSilentFile = PlayerWaveFile;

TEST_P(PlayerSilentFile, PlaysNothingAndEndsNormally) {
  file.Write(GetParam().content);
  PlayWave();
  EXPECT_TRUE(started);
  EXPECT_THAT(Rest(), ElementsAreArray(NothingIsPlayed()));
}

INSTANTIATE_TEST_SUITE_P(All, PlayerSilentFile,
                         testing::Values(SoundFile{"Empty", {}, 0, {}},
                                         SoundFile{"EndsWithinTheRiffHeader", Part(WaveBeginning(), 0, 5), 0, {}},
                                         SoundFile{"EndsWithinTheFormatSize", Part(WaveBeginning(), 0, 18), 0, {}},
                                         SoundFile{"EndsWithinTheFormat", Part(WaveBeginning(), 0, 30), 0, {}},
                                         SoundFile{"EndsBehindTheFormat", WaveBeginning(), 0, {}},
                                         SoundFile{"EndsBeforeTheDataSize", Part(WaveOf(Sound(256)), 0, 40), 0, {}},
                                         SoundFile{"SaysNoData", WaveOf({}), 0, {}},
                                         SoundFile{
                                             "FormatBeyondItsEnd",
                                             Joined({WaveBeginning(0xFFFFFFFFU), ChunkHeader("data", 256), Sound(256)}),
                                             0,
                                             {}}),
                         NameOfFile);

using Player = PlayerTest;

TEST_F(Player, WithoutItsFilePlaysNothingAndEndsNormally) {
  file.Remove();
  PlayWave();
  EXPECT_TRUE(started);
  EXPECT_THAT(Rest(), ElementsAreArray(NothingIsPlayed()));
}

TEST_F(Player, WithAFolderForAFilePlaysNothingAndEndsNormally) {
  world.soundFile = testing::TempDir();
  PlayWave();
  EXPECT_THAT(Rest(), ElementsAreArray(NothingIsPlayed()));
}

// When the player cannot read the headers, it keeps the size of the last file.
TEST_F(Player, WhoseFileIsGoneTheSecondTimePlaysSilenceOfTheFirstLength) {
  PlayWave();
  Rest();
  file.Remove();
  world.samplesTaken.clear();
  PlayWave();
  EXPECT_THAT(Rest(),
              ElementsAreArray(Concat({LoadingBegins(), {"I0 buffer length 256"}, SoundIsWritten(), PlayEnds()})));
  EXPECT_EQ(world.samplesTaken, std::vector<std::int16_t>(128, 0));
}

TEST_F(Player, LoadsItsFileAnewForEachPlay) {
  PlayWave();
  Rest();
  world.samplesTaken.clear();
  const Bytes other = {8, 7, 6, 5, 4, 3, 2, 1};
  file.Write(WaveOf(other));
  PlayWave();
  Rest();
  EXPECT_TRUE(world.journal.Has("I0 buffer length 8"));
  EXPECT_EQ(world.samplesTaken, SamplesIn(other));
}

TEST_F(Player, AsksThePlatformWhereItsPathLies) {
  for (const std::string path : {"/usr/apps/one.wav", "two.wav"}) {
    player->Prepare(path, OnEnd, OnCancel, this);
    PlayWave();
    Rest();
    EXPECT_EQ(world.journal.Count("> file_location(\"" + path + "\")"), 1);
    EXPECT_EQ(world.journal.CountStartingWith("> file_location"), 1);
  }
}

TEST_F(Player, WithoutAPathPlaysNothingAndEndsNormally) {
  player->Prepare("", OnEnd, OnCancel, this);
  PlayWave();
  EXPECT_TRUE(started);
  EXPECT_THAT(Rest(), ElementsAreArray(
                          Concat({{"I0 m_StartPlay", "I0 ", "E2 path is null", "E2 Assertion failed"}, PlayEnds()})));
}

TEST_F(Player, ThatWasToldNothingPlaysNothing) {
  player = std::make_unique<OrvexSoundPlayer>();
  PlayWave();
  EXPECT_THAT(
      Rest(),
      ElementsAreArray(Concat({{"I0 m_StartPlay", "I0 ", "E2 path is null", "E2 Assertion failed", "I0 m_EndPlayerCB"},
                               DeviceIsClosed()})));
}

TEST_F(Player, WithoutMemoryForTheSoundPlaysNothingAndEndsNormally) {
  file.Write(Joined({WaveBeginning(), ChunkHeader("data", 0xFFFFFFFFU)}));
  world.answers.Next("calloc", {0});
  PlayWave();
  EXPECT_THAT(Rest(),
              ElementsAreArray(Concat({LoadingBegins(), {"I0 buffer length -1", "E2 Assertion failed"}, PlayEnds()})));
  EXPECT_THAT(world.samplesTaken, IsEmpty());
}

TEST_F(Player, PlaysAgainWhenThereIsMemoryAgain) {
  world.answers.Next("calloc", {0});
  PlayWave();
  Rest();
  PlayWave();
  Rest();
  EXPECT_EQ(world.samplesTaken, SamplesIn(sound));
}

}  // namespace
