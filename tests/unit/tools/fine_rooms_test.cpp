// Readings of recordings that the room model makes, against its true differences.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "orvex/sim/truth.h"
#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

using ::testing::MatchesRegex;

constexpr double kStartMs = 600.0;  // the first bursts are heard some 250 ms later
constexpr double kLengthMs = 3300.0;

// A living room with tones 58 dB above the noise.
sim::RoomConfig RoomWith(double differenceMs) {
  sim::RoomConfig room;
  room.tv.latencyMs = differenceMs < 0.0 ? 40.0 - differenceMs : 40.0;
  room.optical.latencyMs = differenceMs < 0.0 ? 40.0 : 40.0 + differenceMs;
  room.tv.distanceM = room.optical.distanceM = 2.0;
  room.tv.gainDb = room.optical.gainDb = -20.0;
  room.tv.rt60S = room.optical.rt60S = 0.3;
  room.tv.directToReverberantDb = room.optical.directToReverberantDb = 6.0;
  room.noiseDbfs = -60.0;
  return room;
}

// Within so many milliseconds, and not further than an interval's width beyond the interval.
void ExpectTruth(const sim::RoomConfig& room, const Reading& reading, double withinMs) {
  ASSERT_TRUE(reading.differenceS) << reading.reason;
  const double trueS = sim::MisalignmentMs(room, 0.0) * 1e-3;
  const double width = reading.intervalS.high - reading.intervalS.low;
  EXPECT_NEAR(trueS * 1e3, *reading.differenceS * 1e3, withinMs);
  EXPECT_LT(reading.intervalS.low - width, trueS);
  EXPECT_GT(reading.intervalS.high + width, trueS);
  EXPECT_EQ("", reading.reason);
}

TEST(FineRooms, FindsDifferencesOfBothSigns) {
  for (const double differenceMs : {-280.0, -7.0, 0.0, 0.05, 12.0, 101.3}) {
    SCOPED_TRACE(differenceMs);
    sim::RoomConfig room = RoomWith(differenceMs);
    room.seed = static_cast<std::uint64_t>(300.0 + differenceMs);
    const Reading reading = ReadingOf(RecordRoom(room, kStartMs, kLengthMs));
    ExpectTruth(room, reading, 0.15);
    EXPECT_EQ(4, reading.pairs);
  }
}

TEST(FineRooms, CorrectsTheRemotesRate) {
  for (const double ppm : {-1600.0, 1600.0}) {
    sim::RoomConfig room = RoomWith(-200.0);
    room.rateErrorPpm = ppm;
    const Reading reading = ReadingOf(RecordRoom(room, kStartMs, kLengthMs));
    ExpectTruth(room, reading, 0.15);
    EXPECT_NEAR(ppm, reading.ratePpm.value_or(0.0), 60.0);
  }
}

TEST(FineRooms, DoesWithoutABlockThatWasLost) {
  const sim::RoomConfig room = RoomWith(90.0);
  const Recording whole = RecordRoom(room, kStartMs, kLengthMs);
  // Between the pairs, between the two tones of a pair, and within a burst.
  for (const double atMs : {1300.0, 1530.0, 1495.0}) {
    SCOPED_TRACE(atMs);
    Recording recording = whole;
    LoseBlock(recording, atMs);
    const Reading reading = ReadingOf(recording);
    ExpectTruth(room, reading, 0.15);
    EXPECT_GE(reading.pairs, 3);
    EXPECT_NEAR(0.0, reading.ratePpm.value_or(1e6), 60.0);
  }
}

TEST(FineRooms, ToneLevelsMayDiffer) {
  for (const double louderDb : {-12.0, 12.0}) {
    sim::RoomConfig room = RoomWith(55.0);
    room.optical.gainDb = room.tv.gainDb + louderDb;
    const Reading reading = ReadingOf(RecordRoom(room, kStartMs, kLengthMs));
    ExpectTruth(room, reading, 0.25);
    EXPECT_NEAR(louderDb, reading.arrivals[1]->levelDb - reading.arrivals[0]->levelDb, 3.0);
  }
}

TEST(FineRooms, TheSoundMayBeginAnywhere) {
  const sim::RoomConfig room = RoomWith(-30.0);
  // The lead-in and the way through the room are 246 ms: here 160 ms of noise come before the first burst.
  ExpectTruth(room, ReadingOf(RecordRoom(room, -86.0, 2600.0)), 0.15);
  ExpectTruth(room, ReadingOf(RecordRoom(room, 2800.0, 5600.0)), 0.15);
}

TEST(FineRooms, FindsTheSoundInTwoMinutesOfNoise) {
  const sim::RoomConfig room = RoomWith(-30.0);
  const Recording sound = RecordRoom(room, kStartMs, kLengthMs);
  const Recording noise = MakeNoise(5000.0, 32.8);
  Recording recording;
  for (int n = 0; n < 24; ++n) {
    recording.insert(recording.end(), noise.begin(), noise.end());
  }
  recording.insert(recording.begin() + static_cast<std::ptrdiff_t>(recording.size() / 2), sound.begin(), sound.end());
  ExpectTruth(room, ReadingOf(recording), 0.15);
}

// The direct sound of one loudspeaker is 19 dB weaker than its reverberation: when that begins is anyone's guess.
TEST(FineRooms, RefusesAnOnsetThatDrownsInReverberation) {
  sim::RoomConfig room = RoomWith(-60.0);
  room.tv.latencyMs = 80.0;
  room.optical.latencyMs = 20.0;
  room.optical.rt60S = 1.1;
  room.optical.directToReverberantDb = -19.0;
  const Reading reading = ReadingOf(RecordRoom(room, kStartMs, kLengthMs));
  EXPECT_FALSE(reading.differenceS);
  EXPECT_THAT(reading.reason, MatchesRegex("the onset of 19 kHz is not clear, 1\\.[0-9][0-9] ms to either side"));
}

// When the first burst of the tone that comes second is heard.
double SecondOnsetMs(double differenceMs) {
  const double wayMs = 2.0 / sim::kSpeedOfSoundMPerS * 1e3;
  return kStartMs + 200.0 + 40.0 + wayMs + std::abs(differenceMs) + (differenceMs > 0.0 ? 0.35 : 0.0);
}

// As the service's own dump ends, which stops at the pair that it has found.
TEST(FineRooms, ReadsOnePairOfARecordingThatEndsAfterTheSecondOnset) {
  for (const double differenceMs : {-60.0, 60.0}) {
    const sim::RoomConfig room = RoomWith(differenceMs);
    const Recording whole = RecordRoom(room, kStartMs, kLengthMs);
    for (const double heardMs : {3.0, 5.0, 14.0}) {
      SCOPED_TRACE(heardMs);
      Recording recording = whole;
      CutAt(recording, SecondOnsetMs(differenceMs) + heardMs);
      const Reading reading = ReadingOf(recording);
      ExpectTruth(room, reading, 0.15);
      EXPECT_EQ(1, reading.pairs);
    }
  }
}

TEST(FineRooms, RefusesARecordingThatEndsTooSoonAfterTheSecondOnset) {
  for (const double differenceMs : {-60.0, 60.0}) {
    Recording recording = RecordRoom(RoomWith(differenceMs), kStartMs, kLengthMs);
    CutAt(recording, SecondOnsetMs(differenceMs) + 1.5);
    const Reading reading = ReadingOf(recording);
    EXPECT_FALSE(reading.differenceS);
    EXPECT_EQ(differenceMs < 0.0 ? "the recording ends within 2 ms of the burst of 17 kHz"
                                 : "the recording ends within 2 ms of the burst of 19 kHz",
              reading.reason);
  }
}

}  // namespace
}  // namespace orvex::fine
