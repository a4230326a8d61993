// Where the ticks of an axis are.
#pragma once

#include <vector>

namespace orvex::tools {

// Both ends of an axis.
struct Span {
  double low = 0.0;
  double high = 1.0;

  double Length() const { return high - low; }
  bool Holds(double value) const { return value >= low && value <= high; }
};

// The smallest step of 1, 2 or 5 times a power of ten of which at most `count` fit into `length`.
double TickStep(double length, double count);

// The number of decimal places with which the labels of adjacent ticks differ, at most 2.
int DecimalsOf(double step);

// The multiples of `step` within the span.
std::vector<double> Ticks(Span span, double step);

}  // namespace orvex::tools
