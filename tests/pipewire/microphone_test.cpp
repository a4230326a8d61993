// What a recording of a microphone gives, and whether it keeps time when the process misses cycles of the graph.
#include "pipewire/client/microphone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numeric>
#include <vector>

#include "pipewire/client/semaphore.h"
#include "pipewire/late_cycles.h"
#include "pipewire/living_room.h"

namespace orvex::integration {
namespace {

using pipewire::VoiceBlock;

// So many periods are one block: every block that is where it belongs begins in the same phase.
constexpr double kPeriods = 16.0;
constexpr double kHumHz = kPeriods * kVoiceRateHz / kVoiceBlockSamples;
constexpr double kSampleRadians = 2.0 * M_PI * kHumHz / kVoiceRateHz;

std::complex<double> HumOf(const VoiceBlock& block) {
  std::complex<double> sum;
  for (std::size_t n = 0; n < block.samples.size(); ++n) {
    sum += static_cast<double>(block.samples[n]) * std::polar(1.0, -kSampleRadians * static_cast<double>(n));
  }
  return sum * (2.0 / kVoiceBlockSamples);
}

// Whole blocks and what they say of lost ones.
std::vector<VoiceBlock> Record(std::size_t count) {
  pipewire::Semaphore wake;
  pipewire::Microphone microphone("microphone", {[&] { wake.Post(); }, [] {}});
  std::vector<VoiceBlock> blocks;
  while (blocks.size() < count) {
    wake.Wait();
    for (VoiceBlock block; microphone.GetBlocks().Take(block);) {
      blocks.push_back(block);
    }
  }
  return blocks;
}

// Of blocks that hold the hum from begin to end; those next to a loss may not.
void ExpectHumInPlace(const std::vector<VoiceBlock>& blocks, double toleranceSamples) {
  constexpr double kAmplitude = 0.3 * 32768.0;
  std::complex<double> first;
  std::size_t inPlace = 0;
  for (const VoiceBlock& block : blocks) {
    const std::complex<double> hum = HumOf(block);
    if (std::abs(hum) < 0.98 * kAmplitude) {
      continue;
    }
    first = inPlace++ == 0 ? hum : first;
    EXPECT_NEAR(std::arg(hum / first) / kSampleRadians, 0.0, toleranceSamples) << "samples";
    EXPECT_LT(std::abs(hum), 1.02 * kAmplitude);
  }
  EXPECT_GT(inPlace, blocks.size() / 4);
}

std::uint64_t LostOf(const std::vector<VoiceBlock>& blocks) {
  return std::accumulate(blocks.begin(), blocks.end(), std::uint64_t{0},
                         [](std::uint64_t sum, const VoiceBlock& block) { return sum + block.lostBefore; });
}

// What is lost is not a whole number of the microphone's samples.
constexpr double kToleranceAfterLoss = 3.0;

TEST(Microphone, GivesTheSoundOfTheRoomWithoutAGap) {
  LivingRoom room({10.0, 10.0, 0.0F, kHumHz});
  const std::vector<VoiceBlock> blocks = Record(60);
  // A busy machine may lose a cycle.
  ExpectHumInPlace(blocks, LostOf(blocks) == 0 ? 0.1 : kToleranceAfterLoss);
}

TEST(Microphone, KeepsTimeWhenCyclesAreMissed) {
  LivingRoom room({10.0, 10.0, 0.0F, kHumHz});
  const LateCycles late;
  const std::vector<VoiceBlock> blocks = Record(80);
  EXPECT_GT(LostOf(blocks), 0U);
  ExpectHumInPlace(blocks, kToleranceAfterLoss);
}

}  // namespace
}  // namespace orvex::integration
