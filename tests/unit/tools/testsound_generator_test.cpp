// What the generator puts where: silences, bursts, ramps and levels of a test sound.
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

#include "testsound/analysis.h"
#include "testsound/generator.h"

namespace orvex::tools {
namespace {

Channel Side(const std::vector<std::int16_t>& samples, std::size_t first) {
  Channel channel;
  for (std::size_t n = first; n < samples.size(); n += 2) {
    channel.push_back(samples[n] / 32768.0);
  }
  return channel;
}

TEST(Generator, LastsLeadInPlusPairsPlusTail) {
  const SoundDesign design;
  EXPECT_DOUBLE_EQ(200.0 + 3 * 640.0 + 0.35 + 18.0 + 600.0, design.DurationMs());
  EXPECT_EQ(2u * (48 * 2738 + 17), GenerateSound(design).size());
}

TEST(Generator, PutsEveryPairAtItsInstantAndNothingBetween) {
  SoundDesign design;
  design.skewMs = 0.0;
  const auto samples = GenerateSound(design);
  for (const std::size_t side : {0u, 1u}) {
    const auto bursts = FindBursts(Side(samples, side), 0.0, 48);
    ASSERT_EQ(4u, bursts.size());
    for (std::size_t n = 0; n < 4; ++n) {
      EXPECT_NEAR(48.0 * (200.0 + 640.0 * static_cast<double>(n)), static_cast<double>(bursts[n].begin), 8.0);
      EXPECT_NEAR(48.0 * 18.0, static_cast<double>(bursts[n].end - bursts[n].begin), 16.0);
    }
  }
}

TEST(Generator, StartsTheRightChannelLaterByTheSkew) {
  SoundDesign design;
  design.rampMs = 0.0;
  for (const double skewMs : {0.0, 0.5, 1.0}) {
    design.skewMs = skewMs;
    const auto samples = GenerateSound(design);
    const auto left = FindBursts(Side(samples, 0), 0.0, 48);
    const auto right = FindBursts(Side(samples, 1), 0.0, 48);
    ASSERT_EQ(4u, left.size());
    ASSERT_EQ(4u, right.size());
    for (std::size_t n = 0; n < 4; ++n) {
      EXPECT_DOUBLE_EQ(48.0 * skewMs, static_cast<double>(right[n].begin - left[n].begin));
      EXPECT_EQ(left[n].end - left[n].begin, right[n].end - right[n].begin);
    }
  }
}

TEST(Generator, SendsSeventeenKilohertzLeftAndNineteenRight) {
  const auto samples = GenerateSound(SoundDesign{});
  const Burst first{200 * 48, 218 * 48};
  EXPECT_DOUBLE_EQ(17000.0, DominantFrequencyHz(Side(samples, 0), first));
  EXPECT_DOUBLE_EQ(19000.0, DominantFrequencyHz(Side(samples, 1), first));
}

TEST(Generator, NeverExceedsTheLevelAndReachesIt) {
  for (const double levelDbfs : {-6.0, -12.0, -20.0, 0.0}) {
    SoundDesign design;
    design.levelDbfs = levelDbfs;
    const double peakDbfs = ToDb(Peak(Side(GenerateSound(design), 1)));
    EXPECT_LE(peakDbfs, levelDbfs);
    EXPECT_NEAR(levelDbfs, peakDbfs, 0.05);
  }
}

TEST(Generator, RampsRiseAsARaisedCosine) {
  SoundDesign design;
  design.burstMs = 20.0;
  design.rampMs = 5.0;
  const Channel left = Side(GenerateSound(design), 0);
  const auto peakAround = [&](double ms) {
    double peak = 0.0;
    for (auto n = static_cast<std::size_t>((ms - 0.25) * 48); n < static_cast<std::size_t>((ms + 0.25) * 48); ++n) {
      peak = std::max(peak, std::abs(left[n]));
    }
    return peak;
  };
  const double full = peakAround(210.0);
  EXPECT_NEAR(0.5, peakAround(202.5) / full, 0.08);
  EXPECT_NEAR(0.5, peakAround(217.5) / full, 0.08);
  EXPECT_LT(peakAround(200.3) / full, 0.05);
}

TEST(Generator, LeavesNothingAudible) {
  const auto samples = GenerateSound(SoundDesign{});
  for (const std::size_t side : {0u, 1u}) {
    const Channel channel = Side(samples, side);
    EXPECT_LT(ToDb(PeakBelow(channel, 15000.0) / Peak(channel)), -66.0);
  }
}

TEST(Generator, NamesWhatCannotBeMade) {
  struct Case {
    const char* named;
    SoundDesign design;
  };
  Case cases[] = {{"lead-in", {}}, {"tail", {}},  {"burst", {}},    {"pairs", {}}, {"ramp", {}},
                  {"spacing", {}}, {"level", {}}, {"duration", {}}, {"skew", {}}};
  cases[0].design.leadInMs = -1.0;
  cases[1].design.tailMs = std::nan("");
  cases[2].design.burstMs = 0.0;
  cases[3].design.pairs = 0;
  cases[4].design.rampMs = 10.0;
  cases[5].design.spacingMs = 17.0;
  cases[6].design.levelDbfs = 0.1;
  cases[7].design.tailMs = 1e9;
  cases[8].design.skewMs = -0.1;
  for (const Case& refused : cases) {
    try {
      GenerateSound(refused.design);
      ADD_FAILURE() << refused.named << " was accepted";
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(0u, std::string(error.what()).find(refused.named)) << error.what();
    }
  }
}

}  // namespace
}  // namespace orvex::tools
