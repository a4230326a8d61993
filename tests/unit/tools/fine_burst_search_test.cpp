// Where the bursts are found in recordings without a room.
#include "fine/burst_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "unit/tools/fine_recordings.h"

namespace orvex::fine {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Ne;

constexpr double kToleranceSamples = 6e-3 * kVoiceRateHz;

std::array<ToneBursts, 2> Find(const Recording& recording) {
  return FindBursts({SamplesOf(recording), SamplesOf(recording)}, {}, [] {});
}

void ExpectNear(double expected, const std::optional<std::int64_t>& position) {
  ASSERT_TRUE(position.has_value());
  EXPECT_NEAR(expected, static_cast<double>(*position), kToleranceSamples);
}

void ExpectAll(const HeardSound& sound, const std::array<ToneBursts, 2>& found) {
  for (std::size_t tone = 0; tone < found.size(); ++tone) {
    ASSERT_EQ(4U, found[tone].positions.size());
    for (std::size_t pair = 0; pair < 4; ++pair) {
      ExpectNear(OnsetOf(sound, tone, pair), found[tone].positions[pair]);
    }
  }
}

TEST(FineBurstSearch, FindsEveryBurstWithinSomeMilliseconds) {
  for (const double differenceMs : {-280.0, -15.0, 0.0, 15.0, 280.0}) {
    SCOPED_TRACE(differenceMs);
    HeardSound sound;
    sound.beginMs = 400.0;
    sound.lengthMs = 2700.0;
    sound.differenceMs = differenceMs;
    sound.rateErrorPpm = 1600.0;
    ExpectAll(sound, Find(MakeRecording(sound)));
  }
}

TEST(FineBurstSearch, TonesFurtherApartThanARunMeasuresArePairedWhereAllAreHeard) {
  for (const double differenceMs : {-850.0, -400.0, 330.0, 640.0}) {
    SCOPED_TRACE(differenceMs);
    HeardSound sound;
    sound.beginMs = 1200.0;
    sound.lengthMs = 5500.0;
    sound.differenceMs = differenceMs;
    ExpectAll(sound, Find(MakeRecording(sound)));
  }
}

// The first burst of 19 kHz lacks, as where a receiver mutes its first moments. Without it the three others could be
// the first three, 390 ms early.
TEST(FineBurstSearch, OneBurstThatIsNotHeardPairsNoTonesOverALongWay) {
  HeardSound sound;
  sound.beginMs = 700.0;
  sound.lengthMs = 3500.0;
  sound.differenceMs = -250.0;
  Recording recording = MakeRecording(sound);
  HeardSound lacking = sound;
  lacking.amplitudes[1] = 0.0;
  const Recording without = MakeRecording(lacking);
  const auto end = static_cast<std::ptrdiff_t>(OnsetOf(sound, 1, 0) + 0.1 * kVoiceRateHz);
  std::copy(without.begin(), without.begin() + end, recording.begin());
  const auto found = Find(recording);
  for (std::size_t pair = 1; pair < 4; ++pair) {
    ExpectNear(OnsetOf(sound, 0, pair), found[0].positions[pair]);
    ExpectNear(OnsetOf(sound, 1, pair), found[1].positions[pair]);
  }
  EXPECT_FALSE(found[1].positions[0].has_value());
}

TEST(FineBurstSearch, FollowsTheSoundOverALostBlock) {
  HeardSound sound;
  sound.differenceMs = 100.0;
  Recording recording = MakeRecording(sound);
  LoseBlock(recording, 1200.0);
  const auto found = Find(recording);
  for (std::size_t tone = 0; tone < found.size(); ++tone) {
    for (std::size_t pair = 0; pair < 4; ++pair) {
      const double lost = pair < 2 ? 0.0 : kVoiceBlockSamples;
      ExpectNear(OnsetOf(sound, tone, pair) - lost, found[tone].positions[pair]);
    }
  }
}

TEST(FineBurstSearch, ABurstOutsideTheRecordingHasNoPosition) {
  HeardSound sound;
  sound.lengthMs = 1000.0;
  for (const ToneBursts& bursts : Find(MakeRecording(sound))) {
    EXPECT_TRUE(bursts.positions[0] && bursts.positions[1]);
    EXPECT_FALSE(bursts.positions[2] || bursts.positions[3]);
  }
}

TEST(FineBurstSearch, AToneThatIsNotHeardHasNoPositions) {
  for (const std::size_t silent : {0U, 1U}) {
    HeardSound sound;
    sound.amplitudes[silent] = 0.0;
    const auto found = Find(MakeRecording(sound));
    EXPECT_THAT(found[silent].positions, IsEmpty()) << silent;
    EXPECT_THAT(found[1 - silent].positions, Each(Ne(std::nullopt))) << silent;
  }
}

TEST(FineBurstSearch, TellsEachOfItsSteps) {
  const Recording noise = MakeNoise(500.0, 25.0);
  std::size_t steps = 0;
  FindBursts({SamplesOf(noise), SamplesOf(noise)}, {}, [&] { ++steps; });
  EXPECT_EQ(SearchSteps({}), steps);
}

TEST(FineBurstSearch, NoiseIsThatBetweenTheBursts) {
  HeardSound sound;
  sound.amplitudes = {5000.0, 5000.0};
  const double expected = sound.noise * sound.noise * FilteredNoisePower();
  for (const ToneBursts& bursts : Find(MakeRecording(sound))) {
    EXPECT_GT(bursts.noisePower, 0.6 * expected);
    EXPECT_LT(bursts.noisePower, 1.05 * expected);
  }
}

TEST(FineBurstSearch, NoiseIsAtLeastThatOfRounding) {
  for (const ToneBursts& bursts : Find(Recording(10000))) {
    EXPECT_THAT(bursts.positions, IsEmpty());
    EXPECT_NEAR(FilteredNoisePower() / 12.0, bursts.noisePower, 1e-9);
  }
}

}  // namespace
}  // namespace orvex::fine
