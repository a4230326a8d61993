// Curves that have more blocks than a picture has columns.
#pragma once

#include <cstddef>
#include <vector>

namespace orvex::tools {

struct CurvePoint {
  double buffer = 0.0;
  double decibels = 0.0;  // no number: a gap
};

// The curve as it is when it has at most two points per column. Otherwise each column keeps its lowest and its highest
// point where they are, and so no peak is lost. Gaps are left out of a column that has points.
std::vector<CurvePoint> Thin(const std::vector<CurvePoint>& curve, std::size_t columns);

}  // namespace orvex::tools
