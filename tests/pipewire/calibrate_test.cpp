// orvex-pc calibrate on a PipeWire daemon of the test's own, in rooms whose truth is known.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>

#include "pipewire/living_room.h"
#include "pipewire/pc_run.h"

namespace orvex::integration {
namespace {

// What remains of a difference, of outputs with one clock.
constexpr double kRemainsMs = 0.5;

struct Room {
  double referenceMs;
  double delayedMs;
  double delayMs;  // in force before
  float noise;
  bool isProgrammePlaying = true;

  friend void PrintTo(const Room& room, std::ostream* out) {
    *out << room.referenceMs << "_" << room.delayedMs << "_" << room.delayMs;
  }
  double TruthMs(double inForceMs) const { return delayedMs + inForceMs - referenceMs; }
};

class Calibrate : public PcTest, public testing::WithParamInterface<Room> {};

TEST_P(Calibrate, BringsTheOutputsTogether) {
  const Room& truth = GetParam();
  RoomWays ways{truth.referenceMs, truth.delayedMs, truth.noise};
  ways.isProgrammePlaying = truth.isProgrammePlaying;
  LivingRoom room(ways);
  ASSERT_EQ(0, RunPc(room.GetDaemon(), {"delay", std::to_string(truth.delayMs)}).exitCode);
  const PcOutcome outcome = RunPc(room.GetDaemon(), {"calibrate", "--json"});
  EXPECT_EQ(0, outcome.exitCode) << outcome.log;
  EXPECT_EQ("aligned", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_NEAR(truth.TruthMs(truth.delayMs), outcome.result["before_ms"].asDouble(), kRemainsMs);
  EXPECT_NEAR(0.0, truth.TruthMs(outcome.result["applied_ms"].asDouble()), kRemainsMs) << outcome.log;
  EXPECT_NEAR(truth.TruthMs(outcome.result["applied_ms"].asDouble()), outcome.result["after_ms"].asDouble(), kRemainsMs)
      << outcome.log;
}

using CalibrateOptions = PcTest;

TEST_F(CalibrateOptions, CoarseLeavesItAtTheServicesValueAndTheReportShowsTheRun) {
  LivingRoom room({180.0, 20.0});
  const auto page = room.GetDaemon().GetConfigFolder() / "report.html";
  const PcOutcome outcome = RunPc(room.GetDaemon(), {"calibrate", "--json", "--coarse", "--report", page.string()});
  EXPECT_EQ(0, outcome.exitCode) << outcome.log;
  EXPECT_EQ("aligned", outcome.result["verdict"].asString()) << outcome.log;
  // The service works in milliseconds and in blocks of the remote.
  const double appliedMs = outcome.result["applied_ms"].asDouble();
  EXPECT_EQ(std::round(appliedMs), appliedMs);
  EXPECT_NEAR(-outcome.result["coarse_ms"].asDouble(), appliedMs, 0.75);
  EXPECT_NEAR(160.0, appliedMs, 18.5);
  EXPECT_NEAR(appliedMs - 160.0, outcome.result["after_ms"].asDouble(), kRemainsMs);
  std::ifstream file(page);
  const std::string html{std::istreambuf_iterator<char>(file), {}};
  EXPECT_THAT(html, testing::HasSubstr("</html>"));
  EXPECT_THAT(html, testing::HasSubstr("-160."));
  EXPECT_THAT(html, testing::HasSubstr("The service itself measured -1"));
}

INSTANTIATE_TEST_SUITE_P(Rooms, Calibrate,
                         testing::Values(Room{200.0, 20.0, 0.0, 0.004F}, Room{12.0, 10.0, 0.0, 0.02F, false},
                                         Room{310.0, 10.0, 500.0, 0.004F}));

INSTANTIATE_TEST_SUITE_P(MoreRooms, Calibrate,
                         testing::Values(Room{410.0, 10.0, 0.0, 0.004F}, Room{330.0, 10.0, 0.0, 0.01F},
                                         Room{300.0, 60.0, 0.0, 0.02F}, Room{150.0, 30.0, 20.0, 0.004F},
                                         Room{100.0, 15.0, 85.0, 0.004F}, Room{90.0, 10.0, 100.0, 0.01F},
                                         Room{60.0, 12.0, 90.0, 0.02F}, Room{200.0, 5.0, 255.0, 0.004F},
                                         Room{250.0, 10.0, 360.0, 0.004F}, Room{300.0, 10.0, 450.0, 0.02F},
                                         Room{350.0, 10.0, 540.0, 0.004F}, Room{400.0, 10.0, 630.0, 0.01F},
                                         Room{250.0, 30.0, 500.0, 0.004F}, Room{500.0, 10.0, 810.0, 0.004F},
                                         Room{520.0, 10.0, 900.0, 0.004F, false}, Room{40.0, 31.7, 0.0, 0.02F},
                                         Room{25.3, 25.1, 0.0, 0.004F}));

}  // namespace
}  // namespace orvex::integration
