// orvex-pc calibrate with outputs and a microphone that have clocks of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

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
  // Outputs that have rested since wander for 3 s.
  constexpr std::size_t kUntilSettled = 50;
  constexpr std::size_t kImpulses = 6;
  std::vector<double> differencesMs = room.MeasureDifferencesMs(kUntilSettled + kImpulses);
  ASSERT_EQ(kUntilSettled + kImpulses, differencesMs.size());
  differencesMs.erase(differencesMs.begin(), differencesMs.begin() + kUntilSettled);
  EXPECT_THAT(differencesMs, testing::Each(testing::DoubleNear(0.0, kWandersMs))) << outcome.log;
}

using CalibrateFromRest = PcTest;

// How long a card has run when it plays its first burst. Empty: it plays none.
std::optional<double> RunsBeforeItsFirstBurstS(const RoomCard& card) {
  constexpr int kBurst = INT16_MAX / 50;
  const auto now = static_cast<std::int64_t>(card.TickAt(MonotonicNs()));
  for (std::int64_t tick = card.RunsSince(); tick < now; ++tick) {
    if (std::abs(card.GetSample(tick)) > kBurst) {
      return static_cast<double>(tick - card.RunsSince()) / RoomCard::kRateHz;
    }
  }
  return std::nullopt;
}

// Cards that begin anew wander for some seconds, and the service plays 1.1 s after its start. Whether the calibration
// is aligned in the end does not matter here.
TEST_F(CalibrateFromRest, HasTheOutputsRunForSomeSecondsBeforeTheFirstBurst) {
  ClockedRoom room({{0.0, 190.0}, {80.0, 15.0}, {-150.0}, false});
  EXPECT_EQ(0, room.GetCards().reference.RunsSince());
  const PcOutcome outcome = RunPc(room.GetDaemon(), {"calibrate", "--json"});
  for (const RoomCard* const card : {&room.GetCards().reference, &room.GetCards().delayed}) {
    EXPECT_THAT(RunsBeforeItsFirstBurstS(*card), testing::Optional(testing::Gt(2.5))) << outcome.log;
  }
}

INSTANTIATE_TEST_SUITE_P(MoreRooms, CalibrateClocks,
                         testing::Values(Clocks{0.0, 80.0, 0.0}, Clocks{0.0, -150.0, 80.0},
                                         Clocks{0.0, 80.0, -150.0, false}));

}  // namespace
}  // namespace orvex::integration
