// How the axes of a sweep are read, and which rooms are drawn from them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "sweep/axes.h"
#include "sweep/plan.h"

namespace orvex::tools {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// The virtual living room's reflections come 4 to 11 ms late, 12 to 15 dB weaker than the direct sound.
MATCHER(IsLikeTheLivingRooms, "") {
  return arg.delayMs >= 4.0 && arg.delayMs <= 11.0 && arg.gainDb >= -15.0 && arg.gainDb <= -12.0;
}

TEST(SweepPlan, HasOneRowForEachCombinationOfListedValuesAndTheLastListTurnsFastest) {
  const Plan plan({{axis::kToneDb, "46,40"}, {axis::kPairs, "2,3,4"}}, 1);
  ASSERT_EQ(6u, plan.Rows());
  EXPECT_THAT(plan.ListedAxes(), ElementsAre(axis::kToneDb, axis::kPairs));
  EXPECT_EQ("46", plan.Text(axis::kToneDb, 2));
  EXPECT_EQ("4", plan.Text(axis::kPairs, 2));
  EXPECT_EQ("40", plan.Text(axis::kToneDb, 3));
  EXPECT_EQ(3.0, plan.Draw(4, 0)[axis::kPairs]);
}

TEST(SweepPlan, DrawsEvenlyFromARangeWithEitherSign) {
  const Plan plan({{axis::kDifferenceMs, "+-30:280"}}, 1);
  constexpr int kRooms = 2000;
  int negative = 0;
  double sum = 0.0;
  for (int room = 0; room < kRooms; ++room) {
    const double value = plan.Draw(0, static_cast<std::size_t>(room))[axis::kDifferenceMs];
    ASSERT_GE(std::abs(value), 30.0);
    ASSERT_LE(std::abs(value), 280.0);
    negative += value < 0.0 ? 1 : 0;
    sum += std::abs(value);
  }
  EXPECT_NEAR(kRooms / 2, negative, 100);
  EXPECT_NEAR(155.0, sum / kRooms, 6.0);
}

TEST(SweepPlan, KeepsARoomTheSameButForWhatTheRowSays) {
  const Plan plan({{axis::kRt60S, "0.1,0.9"}, {axis::kJitterMs, "0:5"}}, 7);
  RoomValues one = plan.Draw(0, 12);
  const RoomValues other = plan.Draw(1, 12);
  EXPECT_EQ(0.1, one[axis::kRt60S]);
  EXPECT_EQ(0.9, other[axis::kRt60S]);
  one[axis::kRt60S] = 0.9;
  EXPECT_EQ(other, one);
  EXPECT_NE(plan.RoomSeed(12), plan.RoomSeed(13));
}

TEST(SweepPlan, DrawsTheOtherAxesAsBeforeWhenOneBecomesARange) {
  const Plan fixed({{axis::kDifferenceMs, "50"}}, 3);
  const Plan drawn({{axis::kDifferenceMs, "-50:50"}}, 3);
  EXPECT_EQ(fixed.Draw(0, 4)[axis::kWayMs], drawn.Draw(0, 4)[axis::kWayMs]);
}

TEST(SweepPlan, PlaysTheDefaultTestSoundWhereNothingIsSaid) {
  const SoundDesign expected;
  const SoundDesign drawn = DesignOf(Plan({}, 1).Draw(0, 0));
  EXPECT_EQ(expected.burstMs, drawn.burstMs);
  EXPECT_EQ(expected.rampMs, drawn.rampMs);
  EXPECT_EQ(expected.skewMs, drawn.skewMs);
  EXPECT_EQ(expected.pairs, drawn.pairs);
  EXPECT_EQ(expected.spacingMs, drawn.spacingMs);
  EXPECT_EQ(expected.leadInMs, drawn.leadInMs);
  EXPECT_EQ(expected.tailMs, drawn.tailMs);
  EXPECT_EQ(expected.levelDbfs, drawn.levelDbfs);
}

TEST(SweepPlan, RefusesWhatIsNoValueAndSaysWhatIs) {
  const auto made = [](axis::Axis axis, const char* text) { return [=] { Plan({{axis, text}}, 1); }; };
  EXPECT_THAT(made(axis::kRt60S, "abc"),
              ThrowsMessage<std::invalid_argument>(
                  HasSubstr("--rt60-s \"abc\", expected V, A,B,C, A:B or +-A:B with numbers from 0 to 10")));
  for (const char* text : {"", "11", "-1", "0.4:0.1", "1,,2", "+-1", "1:2:3", "nan", "2x"}) {
    EXPECT_THROW(made(axis::kRt60S, text)(), std::invalid_argument) << text;
  }
  EXPECT_THAT(made(axis::kSilent, "maybe"),
              ThrowsMessage<std::invalid_argument>(HasSubstr("\"maybe\", expected no, yes or several")));
  EXPECT_THAT(made(axis::kDisturbance, "hiss,calps"),
              ThrowsMessage<std::invalid_argument>(HasSubstr(" with commas between, did you mean \"claps\"?")));
}

TEST(SweepPlan, GivesEachWayTwoEarlyReflectionsLikeTheLivingRooms) {
  const sim::RoomConfig livingRoom;
  for (std::size_t room = 0; room < 20; ++room) {
    const sim::RoomConfig drawn = MakeTrial(Plan({}, 1).Draw(0, room), 1).room;
    EXPECT_EQ(livingRoom.tv.reflections.size(), drawn.tv.reflections.size());
    EXPECT_EQ(livingRoom.optical.reflections.size(), drawn.optical.reflections.size());
    EXPECT_THAT(drawn.tv.reflections, Each(IsLikeTheLivingRooms()));
    EXPECT_THAT(drawn.optical.reflections, Each(IsLikeTheLivingRooms()));
    EXPECT_FALSE(drawn.tv.reflections[0] == drawn.tv.reflections[1]);
    EXPECT_FALSE(drawn.tv.reflections == drawn.optical.reflections);
  }
}

TEST(SweepPlan, HasNoEarlyReflectionsWhenTheyAreCountedOut) {
  const sim::RoomConfig room = MakeTrial(Plan({{axis::kReflections, "0"}}, 1).Draw(0, 0), 1).room;
  EXPECT_TRUE(room.tv.reflections.empty());
  EXPECT_TRUE(room.optical.reflections.empty());
}

TEST(SweepPlan, KeepsARoomsReflectionsInAllRows) {
  const Plan plan({{axis::kReflections, "1,3"}, {axis::kReflectionDb, "-20:-10"}, {axis::kRt60S, "0.1,0.9"}}, 7);
  const RoomValues one = plan.Draw(0, 12);
  const RoomValues three = plan.Draw(1, 12);
  EXPECT_EQ(three.tvReflections, plan.Draw(3, 12).tvReflections);
  EXPECT_EQ(three.opticalReflections, plan.Draw(3, 12).opticalReflections);
  EXPECT_THAT(one.tvReflections, ElementsAre(three.tvReflections[0]));
  EXPECT_THAT(one.opticalReflections, ElementsAre(three.opticalReflections[0]));
  EXPECT_FALSE(three.tvReflections == plan.Draw(1, 13).tvReflections);
}

TEST(SweepPlan, KeepsTheReflectionsDelaysWhenARowSaysAnotherLevel) {
  const Plan plan({{axis::kReflectionDb, "-15,-3"}}, 7);
  const std::vector<sim::Reflection> weak = plan.Draw(0, 5).tvReflections;
  const std::vector<sim::Reflection> strong = plan.Draw(1, 5).tvReflections;
  EXPECT_EQ(-15.0, weak[0].gainDb);
  EXPECT_EQ(-3.0, strong[0].gainDb);
  EXPECT_EQ(weak[0].delayMs, strong[0].delayMs);
}

TEST(SweepPlan, PutsTheTrueDifferenceOnTheWayThatIsLate) {
  RoomValues values = Plan({{axis::kWayMs, "60"}, {axis::kDifferenceMs, "25"}}, 1).Draw(0, 0);
  EXPECT_EQ(60.0, MakeTrial(values, 1).room.tv.latencyMs);
  EXPECT_EQ(85.0, MakeTrial(values, 1).room.optical.latencyMs);
  values[axis::kDifferenceMs] = -25.0;
  EXPECT_EQ(85.0, MakeTrial(values, 1).room.tv.latencyMs);
  EXPECT_EQ(60.0, MakeTrial(values, 1).room.optical.latencyMs);
}

}  // namespace
}  // namespace orvex::tools
