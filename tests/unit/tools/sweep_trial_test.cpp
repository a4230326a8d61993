// Runs in virtual time: what they find, when they end, and how the noise is set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <sstream>

#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "output/output_file.h"
#include "receiver/receiver_rig.h"
#include "sweep/disturbance.h"
#include "sweep/one_room.h"
#include "sweep/plan.h"
#include "sweep/report.h"
#include "sweep/sweep.h"
#include "testsound/generator.h"
#include "testsound/wave_file.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using ::testing::HasSubstr;

using Given = std::map<axis::Axis, std::string>;

RoomResult RunOne(const Given& given) {
  return RunRoom(Plan(given, 1), 0, 0);
}

TEST(SweepTrial, FindsTheDifferenceOfABareQuietRoomWithinOneBuffer) {
  for (const char* difference : {"-280", "-101.3", "-35", "35", "101.3", "280"}) {
    const RoomResult result = RunOne(
        {{axis::kDifferenceMs, difference}, {axis::kToneDb, "80"}, {axis::kRt60S, "0"}, {axis::kReflections, "0"}});
    ASSERT_TRUE(result.found) << difference;
    EXPECT_LT(std::abs(result.errorMs), kVoiceBlockMs) << difference;
    EXPECT_NEAR(-result.errorMs, result.remainingMs, 1.0) << difference;
  }
}

TEST(SweepTrial, IsDecidedByTheSecondBurstOfTheFirstPair) {
  const RoomResult result =
      RunOne({{axis::kDifferenceMs, "200"}, {axis::kToneDb, "80"}, {axis::kWayMs, "50"}, {axis::kStartMs, "10"}});
  const double heardMs = 35 * kVoiceBlockMs + 30.0 + 10.0 + 200.0 + 50.0 + 200.0;
  EXPECT_GT(result.decidedMs, heardMs + 30.0);
  EXPECT_LT(result.decidedMs, heardMs + 30.0 + 2.0 * kVoiceBlockMs);
}

TEST(SweepTrial, EndsWhenTheLastFrameIsWrittenAFullDeviceBufferBeforeTheSoundIsOver) {
  const RoomResult result = RunOne({{axis::kSilent, "yes"}, {axis::kStartMs, "10"}});
  EXPECT_FALSE(result.found);
  EXPECT_NEAR(35 * kVoiceBlockMs + 30.0 + 10.0 + SoundDesign{}.DurationMs() - 102.4, result.endedMs, 0.1);
  EXPECT_EQ(result.endedMs, result.decidedMs);
}

TEST(SweepTrial, LosesAToneThatTheEndOfThePlaybackCutsOff) {
  const Given lastChance = {{axis::kDifferenceMs, "200"}, {axis::kPairs, "1"}, {axis::kToneDb, "80"}};
  Given cut = lastChance;
  cut[axis::kTailMs] = "300";
  EXPECT_TRUE(RunOne(lastChance).found);
  EXPECT_FALSE(RunOne(cut).found);
}

TEST(SweepTrial, ToleratesOneMissedToneInAnyPair) {
  for (const char* missed : {"-4", "-3", "-2", "-1", "1", "2", "3", "4"}) {
    const RoomResult result = RunOne({{axis::kMissedTone, missed}, {axis::kDifferenceMs, "-120"}});
    EXPECT_TRUE(result.found) << missed;
    EXPECT_FALSE(result.isFalse) << missed;
  }
  EXPECT_FALSE(RunOne({{axis::kMissedTone, "1"}, {axis::kPairs, "2"}}).found);
}

TEST(SweepTrial, CallsEveryResultFalseWhenTheTestSoundIsNotHeard) {
  const Given given = {{axis::kDisturbance, "both-bursts"}, {axis::kSilent, "yes"}, {axis::kToneDb, "70"}};
  const RoomResult result = RunOne(given);
  EXPECT_TRUE(result.found);
  EXPECT_TRUE(result.isFalse);
}

// The number of rooms whose run applied another result than its first. The main loop of each room is late by a time
// of up to 200 ms, drawn for that room.
int CountChanged(const char* finishedMark, std::size_t rooms) {
  const Plan plan({{axis::kDifferenceMs, "+-20:60"},
                   {axis::kToneDb, "60"},
                   {axis::kLateMs, "0:200"},
                   {axis::kFinishedMark, finishedMark}},
                  1);
  int changed = 0;
  for (std::size_t room = 0; room < rooms; ++room) {
    const RoomResult result = RunRoom(plan, 0, room);
    EXPECT_TRUE(result.found) << room;
    changed += result.changed ? 1 : 0;
  }
  return changed;
}

TEST(SweepLateness, LeavesTheFirstResultAsItIsWithTheFinishedMark) {
  EXPECT_EQ(0, CountChanged("yes", 60));
}

TEST(SweepLateness, LetsLaterResultsReplaceTheFirstWithoutTheFinishedMark) {
  EXPECT_GT(CountChanged("no", 30), 0);
}

TEST(SweepLateness, DelaysTheSoundAndTheReadingOfTheResult) {
  Given given = {{axis::kDifferenceMs, "200"}, {axis::kToneDb, "80"}};
  const double atOnceMs = RunOne(given).decidedMs;
  given[axis::kLateMs] = "300";
  EXPECT_NEAR(atOnceMs + 2 * 300.0, RunOne(given).decidedMs, kVoiceBlockMs);
}

TEST(SweepLateness, DelaysTheSoundAndTheEndOfThePlayback) {
  Given given = {{axis::kSilent, "yes"}};
  const double atOnceMs = RunOne(given).endedMs;
  given[axis::kLateMs] = "300";
  EXPECT_NEAR(atOnceMs + 2 * 300.0, RunOne(given).endedMs, 1e-6);
}

TEST(SweepLateness, AppliesWhatIsFoundBeforeTheMainLoopActsOnTheEndOfThePlayback) {
  Given given = {{axis::kDifferenceMs, "200"}, {axis::kPairs, "1"}, {axis::kToneDb, "80"}, {axis::kTailMs, "300"}};
  EXPECT_FALSE(RunOne(given).found);
  given[axis::kLateMs] = "300";
  EXPECT_TRUE(RunOne(given).found);
}

TEST(SweepLateness, EndsARunOfAbnormalInputAsThat) {
  Given given = {{axis::kSilent, "yes"},
                 {axis::kToneDb, "70"},
                 {axis::kDisturbance, "hiss"},
                 {axis::kDisturbanceBlocks, "60"},
                 {axis::kDisturbanceDbfs, "-10"}};
  const RoomResult atOnce = RunOne(given);
  EXPECT_TRUE(atOnce.abnormal);
  given[axis::kLateMs] = "300";
  const RoomResult late = RunOne(given);
  EXPECT_TRUE(late.abnormal);
  EXPECT_NEAR(atOnce.decidedMs + 300.0, late.decidedMs, 1e-6);
}

// A block's magnitudes, and the ambient means when it came.
struct HeardBlock {
  ToneMagnitudes magnitudes;
  Levels ambient;
};

class BlockObserver : public OrvexReceiverObserver {
public:
  void OnBlock(std::int32_t /*buffer*/, const ToneMagnitudes& magnitudes, const Levels& ambient) override {
    blocks.push_back({magnitudes, ambient});
  }
  std::vector<HeardBlock> blocks;
};

// The analysed blocks of a room, in order. From 1 s on both tones sound until the end.
std::vector<HeardBlock> Listen(const RoomValues& values, std::uint64_t seed) {
  sim::Room room(MakeTrial(values, seed).room);
  SoundDesign endless;
  endless.leadInMs = endless.tailMs = endless.rampMs = 0.0;
  endless.pairs = 1;
  endless.burstMs = 400.0;
  const std::vector<std::int16_t> sound = GenerateSound(endless);
  room.Play(std::chrono::seconds(1), sound.data(), sound.size() / 2);
  BlockObserver observer;
  ReceiverRig rig({&observer});
  sim::VoiceChannel voice(room);
  voice.Start(sim::Time(0));
  for (int block = 0; block < 80; ++block) {
    sim::VoiceChannel::Block samples;
    EXPECT_TRUE(voice.TakeBlock(samples));
    std::vector<std::uint8_t> bytes;
    for (const std::int16_t sample : samples) {
      bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) & 0xFFU));
      bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) >> 8U));
    }
    rig.Deliver(bytes.data(), static_cast<std::uint16_t>(bytes.size()));
  }
  return observer.blocks;
}

constexpr std::size_t kFullBlock = 74;  // index among the analysed blocks; the tones have begun before and fill it

TEST(SweepNoise, LiesBelowAFullBlockOfTheToneByTheAxisValue) {
  constexpr int kRooms = 12;
  RoomValues values =
      Plan({{axis::kToneDb, "46"}, {axis::kRt60S, "0"}, {axis::kReflections, "0"}, {axis::kDifferenceMs, "0"}}, 1)
          .Draw(0, 0);
  double toneOverAmbientDb = 0.0;
  for (std::uint64_t seed = 1; seed <= kRooms; ++seed) {
    const HeardBlock block = Listen(values, seed)[kFullBlock];
    for (const Tone tone : kTones) {
      toneOverAmbientDb += 20.0 * std::log10(block.magnitudes.At(tone) / block.ambient.At(tone)) / (2 * kRooms);
    }
  }
  EXPECT_NEAR(46.0, toneOverAmbientDb, 0.5);
}

TEST(SweepNoise, LeavesBothTonesEquallyStrong) {
  RoomValues values =
      Plan({{axis::kToneDb, "90"}, {axis::kRt60S, "0"}, {axis::kReflections, "0"}, {axis::kDifferenceMs, "0"}}, 1)
          .Draw(0, 0);
  const ToneMagnitudes levels = Listen(values, 1)[kFullBlock].magnitudes;
  EXPECT_NEAR(0.0, 20.0 * std::log10(levels.at17000 / levels.at19000), 0.1);
}

TEST(Sweep, GivesTheSameTableAndFileWhateverTheNumberOfJobs) {
  const Plan plan({{axis::kToneDb, "46,38"}, {axis::kLossPercent, "0:10"}, {axis::kDisturbance, "none,keys"}}, 5);
  const auto report = [&](unsigned jobs) {
    SweepOptions options;
    options.rooms = 6;
    options.jobs = jobs;
    const SweepResult result = RunSweep(plan, options);
    std::ostringstream text;
    WriteTable(text, plan, result);
    WriteCsv(text, plan, result);
    return text.str();
  };
  const std::string one = report(1);
  EXPECT_EQ(one, report(3));
  EXPECT_EQ(4 + 1 + 4 * 6 + 1, std::count(one.begin(), one.end(), '\n'));
}

TEST(Sweep, WritesIntoTheFileWhatEachReflectionHasDrawn) {
  const Plan plan({{axis::kReflections, "2"}, {axis::kReflectionMs, "5"}, {axis::kReflectionDb, "-12"}}, 1);
  SweepOptions options;
  options.rooms = 1;
  std::ostringstream file;
  WriteCsv(file, plan, RunSweep(plan, options));
  EXPECT_THAT(file.str(), HasSubstr(",5.0000 5.0000 5.0000 5.0000,-12.0000 -12.0000 -12.0000 -12.0000,found,"));
}

TEST(Sweep, TellsWhyADesignCannotBeMade) {
  const Plan plan({{axis::kRampMs, "10"}}, 1);
  SweepOptions options;
  options.rooms = 1;
  EXPECT_THROW(RunSweep(plan, options), std::invalid_argument);
}

TEST(Sweep, NeedsRecordingsForTheDisturbanceOfThatName) {
  EXPECT_THROW(RunOne({{axis::kDisturbance, "recording"}}), std::invalid_argument);
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "one.wav"), {100}, {192000, 1});
  EXPECT_THROW(ReadSound(folder / "one.wav"), std::runtime_error) << "nothing is left of it at the microphone's rate";
}

}  // namespace
}  // namespace orvex::tools
