// How many samples were lost, by the graph's clock.
#include "pipewire/client/loss_meter.h"

#include <gtest/gtest.h>

namespace orvex::pipewire {
namespace {

constexpr double kGraphHz = 48000.0;
constexpr double kStreamHz = 46545.0;
constexpr std::uint64_t kQuantum = 1024;
constexpr std::int64_t kQuantumNs = 21333333;
constexpr std::size_t kSamples = 993;  // of a quantum: 992.96

class Losses : public testing::Test {
protected:
  LossMeter::Judgement Judge(std::size_t samples = kSamples) {
    const auto cycle = static_cast<std::int64_t>(m_Cycle);
    return m_Meter.Judge({cycle * kQuantumNs, m_Cycle * kQuantum, kGraphHz}, samples);
  }
  void ExpectNoLoss(LossMeter::Judgement judgement) {
    EXPECT_EQ(judgement.lost, 0U) << "cycle " << m_Cycle;
    EXPECT_TRUE(judgement.isKept) << "cycle " << m_Cycle;
  }
  void RunInOrder(int cycles) {
    for (int n = 0; n < cycles; ++n, ++m_Cycle) {
      // Now and then a sample less, as a resampler does.
      ExpectNoLoss(Judge(m_Cycle % 25 == 0 ? kSamples - 1 : kSamples));
    }
  }

  LossMeter m_Meter{kStreamHz};
  std::uint64_t m_Cycle = 7;
};

TEST_F(Losses, AreNotSeenInALongRecording) {
  RunInOrder(10000);
}

TEST_F(Losses, AreTheMissedCyclesAndTheFirstOneBehindThem) {
  RunInOrder(50);
  m_Cycle += 3;
  const auto judgement = Judge();
  EXPECT_NEAR(static_cast<double>(judgement.lost), 4 * 992.96, 1.5);
  EXPECT_FALSE(judgement.isKept);
  ++m_Cycle;
  RunInOrder(50);
}

TEST_F(Losses, DoNotGrowByCyclesThatComeTwice) {
  RunInOrder(50);
  m_Cycle += 2;
  Judge();
  const auto again = Judge();
  EXPECT_EQ(again.lost, 0U);
  EXPECT_FALSE(again.isKept);
  ++m_Cycle;
  RunInOrder(50);
}

TEST_F(Losses, BeginAnewWithAnotherClock) {
  RunInOrder(50);
  const LossMeter::Cycle slower{1'000'000'000'000, 3, 44100.0};
  ExpectNoLoss(m_Meter.Judge(slower, 1081));
  ExpectNoLoss(m_Meter.Judge({slower.beginNs + 23'219'954, 3 + 1024, 44100.0}, 1081));
}

}  // namespace
}  // namespace orvex::pipewire
