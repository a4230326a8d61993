// Reports as the daemon's profiler makes them, of versions that tell less and more.
#include "pipewire/client/cycle_report.h"

#include <gtest/gtest.h>
#include <spa/param/profiler.h>
#include <spa/pod/builder.h>
#include <spa/utils/type.h>

#include <array>

namespace orvex::pipewire {
namespace {

constexpr std::int32_t kNotReached = 0;
constexpr std::int32_t kToRun = 1;
constexpr std::int32_t kRunning = 2;
constexpr std::int32_t kDone = 3;

struct ToldCycle {
  const char* driver;
  std::int64_t startNs;
  std::int32_t xruns;
  std::vector<std::int32_t> followers;
  std::int64_t signalNs = 0;
};

void AddBlock(spa_pod_builder* builder, std::uint32_t key, const char* name, std::int32_t state,
              std::int64_t signalNs = 0) {
  const spa_fraction latency{1024, 48000};
  spa_pod_builder_prop(builder, key, 0);
  spa_pod_builder_add_struct(builder, SPA_POD_Int(7), SPA_POD_String(name), SPA_POD_Long(std::int64_t{1}),
                             SPA_POD_Long(signalNs), SPA_POD_Long(std::int64_t{3}), SPA_POD_Long(std::int64_t{4}),
                             SPA_POD_Int(state), SPA_POD_Fraction(&latency), SPA_POD_Int(9));
}

void AddCycle(spa_pod_builder* builder, const ToldCycle& cycle) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(builder, &object, SPA_TYPE_OBJECT_Profiler, 0);
  spa_pod_builder_prop(builder, SPA_PROFILER_info, 0);
  spa_pod_builder_add_struct(builder, SPA_POD_Long(std::int64_t{1}), SPA_POD_Float(0.5F), SPA_POD_Float(0.5F),
                             SPA_POD_Float(0.5F), SPA_POD_Int(cycle.xruns));
  spa_pod_builder_prop(builder, SPA_PROFILER_clock, 0);
  const spa_fraction rate{1, 48000};
  spa_pod_builder_add_struct(builder, SPA_POD_Int(0), SPA_POD_Int(5), SPA_POD_String("clock"),
                             SPA_POD_Long(cycle.startNs), SPA_POD_Fraction(&rate), SPA_POD_Long(std::int64_t{0}),
                             SPA_POD_Long(std::int64_t{1024}));
  AddBlock(builder, SPA_PROFILER_driverBlock, cycle.driver, kDone, cycle.signalNs);
  for (const std::int32_t state : cycle.followers) {
    AddBlock(builder, SPA_PROFILER_followerBlock, "follower", state);
  }
  spa_pod_builder_pop(builder, &object);
}

DriverCycles Tell(const std::vector<ToldCycle>& cycles, const std::string& driver = "card") {
  CycleReport report;
  for (const ToldCycle& cycle : cycles) {
    std::array<std::uint8_t, 4096> bytes{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, bytes.data(), bytes.size());
    spa_pod_frame frame{};
    spa_pod_builder_push_struct(&builder, &frame);
    AddCycle(&builder, cycle);
    report.Take(static_cast<spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
  }
  const auto found = report.GetDrivers().find(driver);
  return found == report.GetDrivers().end() ? DriverCycles{} : found->second;
}

TEST(CycleReport, CyclesThatAreDoneAreNotLate) {
  const DriverCycles cycles = Tell({{"card", 100, 4, {kDone, kDone}}, {"card", 200, 4, {kDone}}, {"card", 300, 4, {}}});
  EXPECT_EQ(0U, cycles.late);
  EXPECT_EQ(4, cycles.xruns);
  EXPECT_EQ(300, cycles.lastNs);
}

TEST(CycleReport, ACycleWithANodeThatIsNotDoneIsLateOnceHoweverOftenItIsTold) {
  EXPECT_EQ(1U, Tell({{"card", 100, 0, {kDone, kRunning}}}).late);
  EXPECT_EQ(1U, Tell({{"card", 100, 0, {kNotReached, kToRun}}, {"card", 100, 0, {kNotReached, kToRun}}}).late);
  EXPECT_EQ(2U, Tell({{"card", 100, 0, {kToRun}}, {"card", 200, 0, {kToRun}}}).late);
}

// As of a node that has been added in the middle of a cycle.
TEST(CycleReport, ANodeThatHasNothingToWaitForIsNotLate) {
  EXPECT_EQ(0U, Tell({{"card", 100, 0, {kDone, kNotReached}}}).late);
}

TEST(CycleReport, ADriverThatCountsAnXrunIsLateButNotForThoseBefore) {
  EXPECT_EQ(0U, Tell({{"card", 100, 12, {kDone}}}).late);
  EXPECT_EQ(1U, Tell({{"card", 100, 12, {kDone}}, {"card", 200, 13, {kDone}}, {"card", 300, 13, {kDone}}}).late);
}

// A cycle of 1024 frames lasts 21.3 ms.
TEST(CycleReport, ADriverThatBeginsHalfACycleLateIsLate) {
  EXPECT_EQ(0U, Tell({{"card", 100, 0, {kDone}, 100 + 10'000'000}}).late);
  EXPECT_EQ(1U, Tell({{"card", 100, 0, {kDone}, 100 + 11'000'000}}).late);
}

TEST(CycleReport, TellsDriversApart) {
  const std::vector<ToldCycle> both{{"card", 100, 0, {kToRun}}, {"microphone", 100, 1, {kDone}}, {"card", 200, 0, {}}};
  EXPECT_EQ(1U, Tell(both).late);
  EXPECT_EQ(0U, Tell(both, "microphone").late);
  EXPECT_EQ(1, Tell(both, "microphone").xruns);
}

TEST(CycleReport, WhatIsNoReportIsLeftOut) {
  CycleReport report;
  const spa_pod_int number{{sizeof(std::int32_t), SPA_TYPE_Int}, 5, 0};
  report.Take(&number.pod);
  EXPECT_TRUE(report.GetDrivers().empty());
}

}  // namespace
}  // namespace orvex::pipewire
