// A sweep that is interrupted: which results it returns, and which signals interrupt it.
#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <sstream>

#include "progress/interruption.h"
#include "sweep/plan.h"
#include "sweep/report.h"
#include "sweep/sweep.h"

namespace orvex::tools {
namespace {

using testing::EndsWith;
using testing::StartsWith;

constexpr int kRowCount = 2;
constexpr int kRoomsOfARow = 6;

const Plan& TwoRowsOfRooms() {
  static const Plan plan({{axis::kToneDb, "46,40"}}, 1);
  return plan;
}

// Runs a sweep on three threads that is interrupted when `begun` rooms have begun.
SweepResult SweepUntil(int begun) {
  std::atomic<int> left{begun};
  SweepOptions options;
  options.rooms = kRoomsOfARow;
  options.jobs = 3;
  options.isInterrupted = [&] { return --left < 0; };
  return RunSweep(TwoRowsOfRooms(), options);
}

std::string Csv(const SweepResult& result) {
  std::ostringstream text;
  WriteCsv(text, TwoRowsOfRooms(), result);
  return text.str();
}

std::string Table(const SweepResult& result) {
  std::ostringstream text;
  WriteTable(text, TwoRowsOfRooms(), result);
  return text.str();
}

TEST(SweepInterruption, LeavesTheFirstRoomsAndSaysThatOthersAreMissing) {
  const SweepResult whole = SweepUntil(kRowCount * kRoomsOfARow);
  const SweepResult part = SweepUntil(8);
  EXPECT_TRUE(whole.IsComplete());
  EXPECT_FALSE(part.IsComplete());
  ASSERT_EQ(2u, part.rows.size());
  EXPECT_EQ(6u, part.rows[0].size());
  EXPECT_EQ(2u, part.rows[1].size());
  EXPECT_THAT(Csv(whole), StartsWith(Csv(part)));
  const std::string csv = Csv(part);
  EXPECT_EQ(1 + 8, std::count(csv.begin(), csv.end(), '\n'));
  EXPECT_THAT(Table(whole), testing::Not(testing::HasSubstr("incomplete")));
  EXPECT_THAT(Table(part), EndsWith("\nincomplete: interrupted after 8 of 12 rooms\n"));
}

TEST(SweepInterruption, LeavesWholeRowsAloneOrNothing) {
  EXPECT_EQ(1u, SweepUntil(6).rows.size());
  const SweepResult nothing = SweepUntil(0);
  EXPECT_TRUE(nothing.rows.empty());
  EXPECT_THAT(Csv(nothing), StartsWith("row,room,"));
  EXPECT_THAT(Table(nothing), EndsWith("\nincomplete: interrupted after 0 of 12 rooms\n"));
}

TEST(Interruption, ComesByAnySignalThatAsksForTheEnd) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const Interruption interruption;
    EXPECT_FALSE(interruption.HasCome());
    std::raise(signal);
    EXPECT_TRUE(interruption.HasCome());
  }
}

TEST(Interruption, LeavesAnIgnoredSignalIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  {
    const Interruption interruption;
    std::raise(SIGHUP);
    EXPECT_FALSE(interruption.HasCome());
  }
  EXPECT_EQ(SIG_IGN, std::signal(SIGHUP, SIG_DFL));
}

TEST(Interruption, EndsTheProgramTheSecondTimeAndWhenNobodyAsks) {
  const auto twice = [] {
    const Interruption interruption;
    std::raise(SIGINT);
    std::raise(SIGINT);
  };
  EXPECT_EXIT(twice(), testing::KilledBySignal(SIGINT), "");
  const auto after = [] {
    { const Interruption interruption; }
    std::raise(SIGTERM);
  };
  EXPECT_EXIT(after(), testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace orvex::tools
