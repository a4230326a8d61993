// The figures of one table row.
#pragma once

#include <cstddef>
#include <vector>

#include "orvex/platform/remote_voice.h"

namespace orvex::tools {

// What became of one room. Times count from the start of the recording.
struct RoomResult {
  bool found = false;
  bool abnormal = false;
  bool isFalse = false;      // found, but no measurement of the true difference
  bool changed = false;      // found, but another one than the first result
  double errorMs = 0.0;      // reported minus true difference, when found
  double beforeMs = 0.0;     // the true misalignment, and what is left of it
  double remainingMs = 0.0;  // after whole milliseconds of the reported difference were taken off the delay
  double decidedMs = 0.0;
  double endedMs = 0.0;
  // Only of a room that was read finely, with a reading; `decidedMs` and `endedMs` are then the recording's length, and
  // what is not said of readings stays as it is here.
  double halfWidthMs = 0.0;  // of the interval
  bool held = false;         // the interval holds the true difference
};

// How far from the truth a result is off the detector's grid of one buffer, with a millisecond for the room, and from
// where on it is no measurement of the true difference at all.
constexpr double kOffGridMs = 17.5;
constexpr double kFalseMs = 2.0 * kVoiceBlockMs;
// From where on a fine reading is far from the truth.
constexpr double kFarMs = 1.0;

// Shares in percent of all rooms; errors in milliseconds over all results, false ones included, 0 when there is none.
struct Statistics {
  std::size_t rooms = 0;
  double foundPercent = 0.0;
  double falsePercent = 0.0;     // found, but false
  double offGridPercent = 0.0;   // found, but more than kOffGridMs from the truth
  double abnormalPercent = 0.0;  // ended for abnormal input
  double worsePercent = 0.0;     // left more than a buffer worse than before
  double changedPercent = 0.0;   // found, but another one than the first result
  double biasMs = 0.0;
  double rmsMs = 0.0;
  double p95Ms = 0.0;  // 95 % of the errors are no larger
  double worstMs = 0.0;
  double decidedMs = 0.0;  // means over all rooms
  double endedMs = 0.0;
  // Of fine readings; the shares are in percent of the readings, 0 when there is none.
  double heldPercent = 0.0;
  double farPercent = 0.0;   // more than kFarMs from the truth
  double halfWidthMs = 0.0;  // median
};

// Between which shares of all rooms there are the true one lies with 95 % confidence, by Wilson's score interval, when
// `percent` of `rooms` rooms were hit. Also where none or all of them were, it has a width.
struct ShareInterval {
  double lowPercent;
  double highPercent;
};
ShareInterval WilsonInterval(double percent, std::size_t rooms);

Statistics Summarise(const std::vector<RoomResult>& results);

}  // namespace orvex::tools
