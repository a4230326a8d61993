// Steps that people count in.
#include "chart/ticks.h"

#include <cmath>

namespace orvex::tools {

double TickStep(double length, double count) {
  const double rough = length / count;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= rough) {
      return factor * power;
    }
  }
  return 10.0 * power;
}

int DecimalsOf(double step) {
  if (step < 0.1) {
    return 2;
  }
  return step < 1.0 ? 1 : 0;
}

std::vector<double> Ticks(Span span, double step) {
  std::vector<double> ticks;
  const auto first = static_cast<long>(std::ceil(span.low / step));
  const auto last = static_cast<long>(std::floor(span.high / step));
  for (long tick = first; tick <= last; ++tick) {
    ticks.push_back(static_cast<double>(tick) * step);
  }
  return ticks;
}

}  // namespace orvex::tools
