// Compares what the report finds in a recording with what the receiver itself reported about it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "replay/findings.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

// A record in which all ambient means are 1.
RunRecord AfterAmbient() {
  RunRecord run(false);
  run.OnAmbientKnown(detector::kAmbientBuffer, {1.0, 1.0, 1.0, 1.0});
  return run;
}

Verdict VerdictOn(double at17000, double at19000, double ratio, Tone tone) {
  const RecordedBlock block{detector::kAmbientBuffer + 1, {{at17000, 1.0, 1.0, at19000}, ratio, ratio}};
  return Judge(AfterAmbient(), block, tone);
}

TEST(ReplayFindings, JudgeABlockAtTheLimitsAsTheReceiverDoes) {
  EXPECT_EQ(Verdict::kClean, VerdictOn(50.0, 49.0, 5.0, Tone::k17000Hz));
  EXPECT_EQ(Verdict::kWeak, VerdictOn(49.999, 49.0, 5.0, Tone::k17000Hz));
  EXPECT_EQ(Verdict::kNoisy, VerdictOn(50.0, 49.0, 4.999, Tone::k17000Hz));
  EXPECT_EQ(Verdict::kCovered, VerdictOn(51.0, 51.0, 5.0, Tone::k17000Hz));
  EXPECT_EQ(Verdict::kWeak, VerdictOn(49.0, 50.0, 5.0, Tone::k19000Hz));
  EXPECT_EQ(Verdict::kClean, VerdictOn(49.0, 50.001, 5.0, Tone::k19000Hz));
  EXPECT_EQ(Verdict::kCovered, VerdictOn(51.0, 51.0, 5.0, Tone::k19000Hz));
}

TEST(ReplayFindings, LookForNoToneBeforeTheAmbientMeansAreKnownNorInTheHearableMode) {
  const RunRecord run = ReplayRecord(MakeRecording(Ambient() + "7"));
  RecordedBlock block = run.GetBlocks().back();
  EXPECT_EQ(Verdict::kClean, Judge(run, block, Tone::k17000Hz));
  block.buffer = detector::kAmbientBuffer;
  EXPECT_EQ(Verdict::kNotLookedAt, Judge(run, block, Tone::k17000Hz));
  const RunRecord hearable = ReplayRecord(MakeRecording(Ambient() + "7"), true);
  EXPECT_EQ(Verdict::kNotLookedAt, Judge(hearable, hearable.GetBlocks().back(), Tone::k17000Hz));
}

std::vector<std::int32_t> NoisyBuffers(const RunRecord& run) {
  std::vector<std::int32_t> buffers;
  for (const RecordedEvent& event : run.GetEvents()) {
    if (event.kind == EventKind::kNoisy17 || event.kind == EventKind::kNoisy19) {
      buffers.push_back(event.buffer);
    }
  }
  return buffers;
}

std::vector<std::int32_t> JudgedNoisyBuffers(const RunRecord& run) {
  std::vector<std::int32_t> buffers;
  for (const RecordedBlock& block : run.GetBlocks()) {
    if (Judge(run, block, Tone::k17000Hz) == Verdict::kNoisy || Judge(run, block, Tone::k19000Hz) == Verdict::kNoisy) {
      buffers.push_back(block.buffer);
    }
  }
  return buffers;
}

TEST(ReplayFindings, AgreeWithTheReceiverAboutBlocksOfAllKinds) {
  std::minstd_rand random(7);
  for (int round = 0; round < 20; ++round) {
    std::string blocks = Ambient();
    for (int i = 0; i < 40; ++i) {
      blocks += "........7896xyb"[random() % 15];
    }
    const RunRecord run = ReplayRecord(MakeRecording(blocks));
    std::int32_t firstTone = 0;
    for (const RecordedEvent& event : run.GetEvents()) {
      if (firstTone == 0 && (event.kind == EventKind::kFirst17 || event.kind == EventKind::kFirst19)) {
        firstTone = event.buffer;
      }
    }
    EXPECT_EQ(NoisyBuffers(run), JudgedNoisyBuffers(run)) << blocks;
    const std::int32_t first17 = FindTone(run, Tone::k17000Hz).firstClean;
    const std::int32_t first19 = FindTone(run, Tone::k19000Hz).firstClean;
    EXPECT_EQ(firstTone, first17 == 0 || first19 == 0 ? std::max(first17, first19) : std::min(first17, first19));
  }
}

// The receiver reports each noisy tone, which shows where its limits are: that of the level in noisy tones of rising
// strength, that of the noise in strong tones with a rising neighbour.
TEST(ReplayFindings, AgreeWithTheReceiverAroundItsThresholds) {
  constexpr int kBlocks = 200;
  for (const double frequencyHz : {17000.0, 19000.0}) {
    RecordingMaker weak;
    RecordingMaker strong;
    weak.Add(Ambient());
    strong.Add(Ambient());
    for (int i = 0; i < kBlocks; ++i) {
      weak.Add({{frequencyHz, 12.0 + 8.0 * i / kBlocks}, {17500.0, 10.0}});
      strong.Add({{frequencyHz, 3000.0}, {17500.0, 800.0 + 600.0 * i / kBlocks}});
    }
    for (const RecordingMaker* maker : {&weak, &strong}) {
      const RunRecord run = ReplayRecord(maker->Bytes());
      const auto noisy = NoisyBuffers(run);
      EXPECT_EQ(noisy, JudgedNoisyBuffers(run));
      EXPECT_GT(noisy.size(), kBlocks / 10u);
      EXPECT_LT(noisy.size(), kBlocks * 9u / 10u);
    }
  }
}

TEST(ReplayRecord, HasTheAmbientMeansOfTheSummary) {
  const auto bytes = MakeRecording("7979" + std::string(30, '.') + "7");
  const Json::Value ambient = ReplayLines(bytes).back()["ambient"];
  const Levels means = *ReplayRecord(bytes).GetAmbient();
  EXPECT_EQ(ambient["17000"].asDouble(), means.at17000);
  EXPECT_EQ(ambient["17500"].asDouble(), means.at17500);
  EXPECT_EQ(ambient["18000"].asDouble(), means.at18000);
  EXPECT_EQ(ambient["19000"].asDouble(), means.at19000);
  EXPECT_FALSE(ReplayRecord(MakeRecording(std::string(34, '.'))).GetAmbient());
}

TEST(ReplayFindings, SumUpATone) {
  const RunRecord run = ReplayRecord(MakeRecording(Ambient() + "8.7bxx.9"));
  const ToneFindings at17 = FindTone(run, Tone::k17000Hz);
  EXPECT_EQ(5, at17.reaching);
  EXPECT_EQ(3, at17.clean);
  EXPECT_EQ(2, at17.noisy);
  EXPECT_EQ(0, at17.covered);
  EXPECT_EQ(36, at17.firstClean);
  EXPECT_NEAR(2.4, at17.bestNoisyRatio, 0.3);
  const ToneFindings at19 = FindTone(ReplayRecord(MakeRecording(Ambient() + "8.7b..9")), Tone::k19000Hz);
  EXPECT_EQ(1, at19.covered);
  EXPECT_EQ(1, at19.clean);
  EXPECT_EQ(2, at19.reaching);
  EXPECT_EQ(42, at19.strongest->buffer);
}

TEST(ReplayRecord, TellsALateSecondToneFromAWeakOne) {
  const auto late = ReplayRecord(MakeRecording(Ambient() + "7" + std::string(19, '.') + "9")).GetSequenceErrors();
  ASSERT_EQ(1u, late.size());
  EXPECT_EQ(36, late[0].first);
  EXPECT_EQ(56, late[0].buffer);
  EXPECT_EQ(Tone::k19000Hz, late[0].tone);
  EXPECT_TRUE(late[0].IsTooLate());

  // The first tone's block also has 19 kHz at two thirds of its level, which is more than the second tone has.
  const auto weak = ReplayRecord(MakeRecording(Ambient() + "b" + std::string(18, '.') + "6")).GetSequenceErrors();
  ASSERT_EQ(1u, weak.size());
  EXPECT_EQ(55, weak[0].buffer);
  EXPECT_FALSE(weak[0].IsTooLate());
  EXPECT_NEAR(2000.0 / 1500.0, weak[0].needed / weak[0].level, 0.01);
  EXPECT_TRUE(ReplayRecord(MakeRecording(Ambient() + "b....9")).GetSequenceErrors().empty());
}

TEST(ReplayRecord, RaisesWhatASecondToneMustReachWithEachPair) {
  const RunRecord run = ReplayRecord(MakeRecording(Ambient() + "7..6.9..6"));
  const std::vector<Floor>& floors = run.GetFloors();
  ASSERT_EQ(4u, floors.size());
  EXPECT_EQ(Tone::k19000Hz, floors[0].tone);
  EXPECT_EQ(36, floors[0].from);
  EXPECT_EQ(39, floors[0].to);
  EXPECT_EQ(39, floors[1].from);
  EXPECT_EQ(41, floors[1].to);
  EXPECT_EQ(run.GetBlocks()[39 - 5].levels.at19000, floors[1].level);
  EXPECT_EQ(run.GetBlocks()[41 - 5].levels.at19000, floors[2].level);
  // The last tone, which is weaker, becomes a new first tone.
  EXPECT_EQ(Tone::k17000Hz, floors[3].tone);
  ASSERT_EQ(1u, run.GetSequenceErrors().size());
  EXPECT_EQ(44, run.GetSequenceErrors()[0].buffer);
}

}  // namespace
}  // namespace orvex::tools
