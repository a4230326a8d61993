// Conversions of units: decibels to factors, milliseconds to Time.
#pragma once

#include <cmath>

#include "orvex/sim/time.h"

namespace orvex::sim {

inline double AmplitudeOfDb(double db) {
  return std::pow(10.0, db / 20.0);
}
inline Time TimeOfMs(double ms) {
  return Time(std::llround(ms * 1e6));
}

}  // namespace orvex::sim
