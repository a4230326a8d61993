// The recording depends neither on the pieces in which frames are played nor on how early; what was cut is not heard.
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

using namespace std::chrono_literals;

Time FrameTime(std::size_t frame) {
  return Time(std::llround(static_cast<double>(frame) * 1e9 / kPlaybackRateHz));
}

// A room with everything but noise, which would hide differences between recordings.
RoomConfig MakeEchoingRoom() {
  RoomConfig config;
  config.noiseDbfs.reset();
  config.tv.gainDb = config.optical.gainDb = -6.0;
  return config;
}

Samples MakeTwoTones(std::size_t frames) {
  Samples sound = MakeSilence(frames);
  AddTone(sound, kLeft, 17000.0, -12.0);
  AddTone(sound, kRight, 19000.0, -12.0);
  return sound;
}

TEST(RoomPlaybackTest, PiecesOfPlaybackAndRecordingGiveTheSameSoundAsTheWhole) {
  constexpr std::size_t kFrames = 24000;
  constexpr std::size_t kCount = 30000;
  constexpr std::size_t kPiece = 1228;
  const Samples sound = MakeTwoTones(kFrames);
  Room whole(MakeEchoingRoom());
  const Samples expected = PlayAndRecord(whole, sound, kCount);

  Room pieces(MakeEchoingRoom());
  pieces.StartRecording(0ms);
  Samples recording;
  std::size_t played = 0;
  while (recording.size() < kCount) {
    const std::size_t count = std::min<std::size_t>(kVoiceBlockSamples, kCount - recording.size());
    const Time known = pieces.SampleTime(recording.size() + count) + Room::Lookahead();
    while (played < kFrames && FrameTime(played) <= known) {
      const std::size_t frames = std::min(kPiece, kFrames - played);
      pieces.Play(FrameTime(played), &sound[2 * played], frames);
      played += frames;
    }
    const Samples block = Record(pieces, count);
    recording.insert(recording.end(), block.begin(), block.end());
  }
  ASSERT_GT(RmsDbfs(expected), -40.0);
  // Times are rounded to nanoseconds, so a piece may be shifted by a fraction of a nanosecond.
  EXPECT_LE(MaxDifference(recording, expected), 3);
}

TEST(RoomPlaybackTest, ShortAndLongSilencesWithinASoundKeepEveryImpulseInItsPlace) {
  const std::vector<std::size_t> frames = {0, 100, 350, 607, 1200, 5000};
  Samples sound = MakeSilence(6000);
  for (const std::size_t frame : frames) {
    AddImpulse(sound, kLeft, frame);
  }
  Room room(MakeBareRoom());
  const Samples recording = PlayAndRecord(room, sound, 8000, 10ms);
  for (const std::size_t frame : frames) {
    const double expected = (0.01 + static_cast<double>(frame) / kPlaybackRateHz) * kRateHz;
    const auto middle = static_cast<std::size_t>(expected);
    EXPECT_NEAR(ArrivalSample(recording, middle - 40, middle + 40), expected, 0.1) << frame;
  }
}

TEST(RoomPlaybackTest, ACutDropsFramesThatAreDueAtOrAfterIt) {
  Samples sound = MakeSilence(48000);
  AddImpulse(sound, kLeft, 23999);
  AddImpulse(sound, kRight, 24000);
  RoomConfig config = MakeBareRoom();
  config.optical.latencyMs = 100.0;
  Room room(config);
  room.Play(0ms, sound.data(), 48000);
  room.CutPlayback(500ms);
  room.StartRecording(0ms);
  const Samples recording = Record(room, kSecond);
  EXPECT_NEAR(ArrivalSample(recording), 23999 / kPlaybackRateHz * kRateHz, 0.05);
  EXPECT_LT(LastSound(recording), 0.55 * kRateHz);
}

TEST(RoomPlaybackTest, ACutDuringTheRecordingEndsTheToneThere) {
  Room room(MakeBareRoom());
  const Samples sound = MakeTwoTones(48000);
  room.Play(0ms, sound.data(), 48000);
  room.StartRecording(0ms);
  Samples recording = Record(room, 20000);
  const Time cut = room.SampleTime(20000) + Room::Lookahead();
  room.CutPlayback(cut);
  const Samples rest = Record(room, 20000);
  const double cutSample = static_cast<double>(cut.count()) * 1e-9 * kRateHz - 20000.0;
  EXPECT_NEAR(static_cast<double>(LastSound(rest)), cutSample, 80.0);
  EXPECT_NEAR(ToneDbfs(rest, 17000.0, kRateHz, 0, static_cast<std::size_t>(cutSample)), -12.0, 0.1);
}

TEST(RoomPlaybackTest, PlaybackAfterACutIsHeardAgain) {
  Room room(MakeBareRoom());
  const Samples sound = MakeTwoTones(24000);
  room.Play(0ms, sound.data(), 24000);
  room.CutPlayback(100ms);
  room.Play(300ms, sound.data(), 24000);
  room.StartRecording(0ms);
  const Samples recording = Record(room, 30000);
  EXPECT_LT(ToneDbfs(recording, 17000.0, kRateHz, 5000, 13000), -80.0);
  EXPECT_NEAR(ToneDbfs(recording, 17000.0, kRateHz, 15000, 25000), -12.0, 0.1);
}

TEST(RoomPlaybackTest, SoundDueLookaheadAfterTheLastSampleIsInTimeAtEveryRate) {
  for (const double rateHz : {20000.0, kRateHz, 96000.0}) {
    RoomConfig config = MakeBareRoom();
    config.microphoneRateHz = rateHz;
    config.rateErrorPpm = -100000.0;
    config.tv.reflections = {{0.0, -6.0}};
    const Samples sound = MakeTwoTones(4800);
    Room ahead(config);
    const Samples expected = PlayAndRecord(ahead, sound, 2000, 20ms);
    Room late(config);
    late.StartRecording(0ms);
    std::size_t recorded = 0;
    while (late.SampleTime(recorded) + Room::Lookahead() < 20ms) {
      ++recorded;
    }
    Samples recording = Record(late, recorded);
    late.Play(20ms, sound.data(), 4800);
    const Samples rest = Record(late, 2000 - recorded);
    recording.insert(recording.end(), rest.begin(), rest.end());
    EXPECT_EQ(recording, expected) << rateHz << " Hz";
  }
}

TEST(RoomPlaybackTest, SoundThatIsPlayedTooLateIsLostButDoesNoHarm) {
  Room room(MakeBareRoom());
  room.StartRecording(0ms);
  const Samples before = Record(room, kSecond);
  EXPECT_EQ(FirstSound(before), before.size());
  const Samples sound = MakeTwoTones(24000);
  room.Play(0ms, sound.data(), 24000);
  const Samples after = Record(room, 10000);
  EXPECT_EQ(FirstSound(after), after.size());
}

TEST(RoomPlaybackTest, ASecondRecordingHearsTheTailOfWhatTheFirstOneHeard) {
  RoomConfig config = MakeBareRoom();
  config.tv.rt60S = 1.0;
  config.tv.directToReverberantDb = 0.0;
  Samples sound = MakeSilence(10);
  AddImpulse(sound, kLeft, 0);
  constexpr std::size_t kLater = 4654;  // about 100 ms
  Room whole(config);
  const Samples expected = PlayAndRecord(whole, sound, 2 * kLater);
  Room room(config);
  PlayAndRecord(room, sound, kLater / 2);
  room.StartRecording(whole.SampleTime(kLater));
  const Samples second = Record(room, kLater);
  ASSERT_GT(RmsDbfs(second), -60.0);
  EXPECT_LE(MaxDifference(second, Samples(expected.begin() + kLater, expected.end())), 1);
}

TEST(RoomPlaybackTest, WhatWasPlayedWithinTheMemoryIsHeardByALaterRecording) {
  RoomConfig config = MakeBareRoom();
  Room room(config);
  Samples sound = MakeSilence(10);
  AddImpulse(sound, kLeft, 0);
  room.Play(0s, sound.data(), 10);
  room.Play(Room::kMemory - 1ms, sound.data(), 10);
  room.StartRecording(-100ms);
  EXPECT_NEAR(ArrivalSample(Record(room, 10000)), 0.1 * kRateHz, 0.05);
  room.Play(Room::kMemory + 1ms, sound.data(), 10);
  room.StartRecording(-100ms);
  EXPECT_EQ(FirstSound(Record(room, 10000)), 10000U);
}

TEST(RoomPlaybackTest, RecordingBeforeItsStartIsRefused) {
  Room room(MakeBareRoom());
  Samples samples(1);
  EXPECT_THROW(room.Record(samples.data(), 1), std::logic_error);
}

TEST(RoomPlaybackTest, AnInvalidRoomIsRefused) {
  RoomConfig config;
  config.tv.distanceM = -1.0;
  EXPECT_THROW(Room{config}, RoomError);
}

}  // namespace
}  // namespace orvex::sim::test
