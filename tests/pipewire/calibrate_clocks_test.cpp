// orvex-pc calibrate with outputs and a microphone that have clocks of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pipewire/clocked_room.h"
#include "pipewire/pc_run.h"

namespace orvex::integration {
namespace {

// What remains of a difference, as clocks of their own wander against each other.
constexpr double kWandersMs = 1.5;

struct Clocks {
  double referencePpm;
  double delayedPpm;
  double microphonePpm;
  bool isProgrammePlaying = true;

  friend void PrintTo(const Clocks& clocks, std::ostream* out) {
    *out << clocks.referencePpm << "_" << clocks.delayedPpm << "_" << clocks.microphonePpm;
  }
};

class CalibrateClocks : public PcTest, public testing::WithParamInterface<Clocks> {};

TEST_P(CalibrateClocks, BringsTheOutputsTogether) {
  const Clocks& clocks = GetParam();
  ClockedRoom room(
      {{clocks.referencePpm, 190.0}, {clocks.delayedPpm, 15.0}, {clocks.microphonePpm}, clocks.isProgrammePlaying});
  const PcOutcome outcome = RunPc(room.GetDaemon(), {"calibrate", "--json"});
  if (SaysThatSoundWasLost(outcome)) {
    GTEST_SKIP() << "this computer is too busy: " << outcome.log;
  }
  EXPECT_EQ(0, outcome.exitCode) << outcome.log;
  EXPECT_EQ("aligned", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_NEAR(0.0, outcome.result["after_ms"].asDouble(), kWandersMs) << outcome.log;
  constexpr std::size_t kImpulses = 6;
  const std::vector<double> differencesMs = room.MeasureDifferencesMs(kImpulses);
  EXPECT_EQ(kImpulses, differencesMs.size());
  EXPECT_THAT(differencesMs, testing::Each(testing::DoubleNear(0.0, kWandersMs))) << outcome.log;
}

INSTANTIATE_TEST_SUITE_P(MoreRooms, CalibrateClocks,
                         testing::Values(Clocks{0.0, 80.0, 0.0}, Clocks{0.0, -150.0, 80.0},
                                         Clocks{0.0, 80.0, -150.0, false}));

}  // namespace
}  // namespace orvex::integration
