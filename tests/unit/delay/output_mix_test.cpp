// The two outputs, cycle by cycle as the graph calls.
#include "delay/output_mix.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace orvex::tools {
namespace {

using Channels = std::array<std::vector<float>, 4>;

constexpr std::uint32_t kFrames = 480;  // 10 ms
constexpr std::uint64_t kCycleNs = 10'000'000;

// A graph at 48 kHz with cycles of 10 ms.
class Graph {
public:
  explicit Graph(OutputMix& mix) : m_Mix(mix) {}

  // Time goes by without a cycle, and the clock counts or does not.
  void Rest(std::uint64_t durationNs) { m_NowNs += durationNs; }
  void LoseCycles(std::uint32_t count) {
    m_NowNs += count * kCycleNs;
    m_Position += count * kFrames;
  }
  // A cycle that begins with these samples in its inputs and is silent otherwise. Returns the outputs.
  Channels Play(const std::array<float, 4>& firstSamples) {
    Channels in;
    Channels out;
    pipewire::Cycle cycle;
    cycle.frames = kFrames;
    cycle.rateHz = 48000;
    cycle.startNs = m_NowNs;
    cycle.clock = 7;
    cycle.position = m_Position;
    for (std::size_t i = 0; i < in.size(); ++i) {
      in[i].resize(kFrames);
      out[i].resize(kFrames, -1.0F);
      in[i][0] = firstSamples[i];
      cycle.in[i] = in[i].data();
      cycle.out[i] = out[i].data();
    }
    m_Mix.OnCycle(cycle);
    m_NowNs += kCycleNs;
    m_Position += kFrames;
    return out;
  }
  Channels PlaySilence() { return Play({}); }
  // The clock has counted so many frames.
  std::uint64_t GetPosition() const { return m_Position; }

private:
  OutputMix& m_Mix;
  std::uint64_t m_NowNs = 1'000'000'000;
  std::uint64_t m_Position = 12345;
};

std::vector<float> FirstSamples(const Channels& out) {
  return {out[0][0], out[1][0], out[2][0], out[3][0]};
}

TEST(OutputMix, TheTestSoundsLeftGoesToTheReferenceAndItsRightToTheDelayedOutput) {
  OutputMix mix(0.0);
  EXPECT_EQ(FirstSamples(Graph(mix).Play({0.5F, 0.25F, 0.125F, 0.0625F})),
            (std::vector<float>{0.625F, 0.375F, 0.5625F, 0.3125F}));
}

TEST(OutputMix, OnlyTheDelayedOutputIsDelayed) {
  OutputMix mix(10.0);  // a cycle
  Graph graph(mix);
  EXPECT_EQ(FirstSamples(graph.Play({0.5F, 0.25F, 0.125F, 0.0625F})), (std::vector<float>{0.625F, 0.375F, 0.0F, 0.0F}));
  EXPECT_EQ(FirstSamples(graph.PlaySilence()), (std::vector<float>{0.0F, 0.0F, 0.5625F, 0.3125F}));
}

TEST(OutputMix, PortsWithoutALinkAreSilentAndTakeNothing) {
  OutputMix mix(0.0);
  std::vector<float> reference(kFrames, -1.0F);
  pipewire::Cycle cycle;
  cycle.frames = kFrames;
  cycle.rateHz = 48000;
  cycle.out[OutputMix::kReferenceLeft] = reference.data();
  mix.OnCycle(cycle);
  EXPECT_EQ(reference, std::vector<float>(kFrames, 0.0F));
}

TEST(OutputMix, AfterAPauseNothingOldIsHeardAndANewDelayHoldsAtOnce) {
  OutputMix mix(20.0);
  Graph graph(mix);
  graph.Play({0.5F, 0.5F});
  mix.SetDelayMs(10.0);
  graph.Rest(201'000'000);
  EXPECT_EQ(FirstSamples(graph.Play({0.25F, 0.25F})), (std::vector<float>{0.25F, 0.25F, 0.0F, 0.0F}));
  EXPECT_EQ(FirstSamples(graph.PlaySilence()), (std::vector<float>{0.0F, 0.0F, 0.25F, 0.25F}));
  EXPECT_EQ(FirstSamples(graph.PlaySilence()), (std::vector<float>{0.0F, 0.0F, 0.0F, 0.0F}));
}

TEST(OutputMix, AShorterPauseForgetsNothing) {
  OutputMix mix(20.0);
  Graph graph(mix);
  graph.Play({0.5F, 0.5F});
  graph.Rest(199'000'000);
  graph.PlaySilence();
  EXPECT_EQ(FirstSamples(graph.PlaySilence()), (std::vector<float>{0.0F, 0.0F, 0.5F, 0.5F}));
}

TEST(OutputMix, LostCyclesDoNotMoveTheOutputsAgainstEachOther) {
  OutputMix mix(50.0);
  Graph graph(mix);
  const std::uint64_t played = graph.GetPosition();
  graph.Play({0.5F, 0.5F});
  graph.PlaySilence();
  graph.LoseCycles(2);
  while (graph.GetPosition() < played + 2400) {
    EXPECT_EQ(FirstSamples(graph.PlaySilence()), std::vector<float>(4, 0.0F));
  }
  EXPECT_EQ(FirstSamples(graph.PlaySilence()), (std::vector<float>{0.0F, 0.0F, 0.5F, 0.5F}));
}

TEST(OutputMix, TheDelayFollowsTheGraphsRate) {
  OutputMix mix(1.0);
  std::vector<float> in(192, 0.0F);
  std::vector<float> out(192, 0.0F);
  in[0] = 0.5F;
  pipewire::Cycle cycle;
  cycle.frames = 192;
  cycle.rateHz = 96000;
  cycle.in[OutputMix::kProgrammeLeft] = in.data();
  cycle.out[OutputMix::kDelayedLeft] = out.data();
  mix.OnCycle(cycle);
  EXPECT_EQ(out[96], 0.5F);
}

}  // namespace
}  // namespace orvex::tools
