// Thinning a curve keeps its peaks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "replay/curve.h"

namespace orvex::tools {
namespace {

std::vector<CurvePoint> RandomCurve(std::size_t points) {
  std::minstd_rand random(3);
  std::vector<CurvePoint> curve;
  for (std::size_t i = 0; i < points; ++i) {
    curve.push_back({static_cast<double>(i), static_cast<double>(random() % 10000)});
  }
  return curve;
}

bool IsLower(const CurvePoint& a, const CurvePoint& b) {
  return a.decibels < b.decibels;
}

TEST(ReplayCurve, IsLeftAsItIsUpToTwoPointsPerColumn) {
  EXPECT_EQ(100u, Thin(RandomCurve(100), 50).size());
  EXPECT_EQ(7u, Thin(RandomCurve(7), 50).size());
}

TEST(ReplayCurve, KeepsTheLowestAndTheHighestPointOfEachColumnWhereTheyAre) {
  const auto curve = RandomCurve(1003);
  const auto thinned = Thin(curve, 50);
  ASSERT_EQ(100u, thinned.size());
  for (std::size_t i = 0; i < thinned.size(); ++i) {
    EXPECT_EQ(curve[static_cast<std::size_t>(thinned[i].buffer)].decibels, thinned[i].decibels);
    EXPECT_TRUE(i == 0 || thinned[i - 1].buffer < thinned[i].buffer);
  }
  for (std::size_t column = 0; column < 50; ++column) {
    const auto begin = curve.begin() + static_cast<std::ptrdiff_t>(column * 1003 / 50);
    const auto end = curve.begin() + static_cast<std::ptrdiff_t>((column + 1) * 1003 / 50);
    const auto pair = thinned.begin() + static_cast<std::ptrdiff_t>(2 * column);
    EXPECT_EQ(std::max_element(begin, end, IsLower)->decibels, std::max_element(pair, pair + 2, IsLower)->decibels);
    EXPECT_EQ(std::min_element(begin, end, IsLower)->decibels, std::min_element(pair, pair + 2, IsLower)->decibels);
  }
}

TEST(ReplayCurve, LeavesGapsOutOfAColumnThatHasPoints) {
  auto curve = RandomCurve(100);
  for (std::size_t i = 0; i < 15; ++i) {
    curve[i].decibels = NAN;
  }
  const auto thinned = Thin(curve, 10);
  ASSERT_EQ(19u, thinned.size());
  EXPECT_TRUE(std::isnan(thinned[0].decibels));
  EXPECT_GE(thinned[1].buffer, 15.0);
  EXPECT_FALSE(std::isnan(thinned[1].decibels));
}

}  // namespace
}  // namespace orvex::tools
