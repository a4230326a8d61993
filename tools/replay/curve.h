// Thins curves that have more points than a chart has columns.
#pragma once

#include <cstddef>
#include <vector>

namespace orvex::tools {

struct CurvePoint {
  double buffer = 0.0;
  double decibels = 0.0;  // NaN: a gap in the curve
};

// Returns the curve unchanged if it has at most two points per column. Otherwise keeps the lowest and the highest point
// of each column, at their own buffers, so that no peak is lost. A gap remains only in a column without any other
// point.
std::vector<CurvePoint> Thin(const std::vector<CurvePoint>& curve, std::size_t columns);

}  // namespace orvex::tools
