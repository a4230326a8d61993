// Keeps the two extremes of each column in the order in which they come.
#include "replay/curve.h"

#include <algorithm>
#include <cmath>

namespace orvex::tools {

std::vector<CurvePoint> Thin(const std::vector<CurvePoint>& curve, std::size_t columns) {
  if (curve.size() <= 2 * columns) {
    return curve;
  }
  std::vector<CurvePoint> thinned;
  const auto begin = [&](std::size_t column) {
    return curve.begin() + static_cast<std::ptrdiff_t>(column * curve.size() / columns);
  };
  for (std::size_t column = 0; column < columns; ++column) {
    std::vector<CurvePoint> points;
    std::copy_if(begin(column), begin(column + 1), std::back_inserter(points),
                 [](const CurvePoint& point) { return !std::isnan(point.decibels); });
    if (points.empty()) {
      thinned.push_back(*begin(column));
      continue;
    }
    auto [low, high] = std::minmax_element(
        points.begin(), points.end(), [](const CurvePoint& a, const CurvePoint& b) { return a.decibels < b.decibels; });
    thinned.push_back(*std::min(low, high));
    if (low != high) {
      thinned.push_back(*std::max(low, high));
    }
  }
  return thinned;
}

}  // namespace orvex::tools
