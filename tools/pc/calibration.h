// One calibration: the service measures and corrects in whole buffers, the fine reading of the same sound says the
// rest, and a second listening says what remains.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "fine/fine_reading.h"
#include "pc/living_room.h"

namespace orvex::tools {

enum class PcVerdict {
  kAligned,       // the second listening agrees
  kWorse,         // it does not; the old delay is in force
  kNoDifference,  // the test sound was not heard well enough; the old delay is in force
  kOutOfRange,    // no delay of the line corrects it; the old delay is in force
  kNoMicrophone,  // nothing could be recorded, or digital silence; the old delay is in force
  kFailed,        // something else went wrong; the old delay is in force, as far as that can be
};

// As the JSON output has it: "no_difference".
const char* NameOf(PcVerdict verdict);

// Positive differences: the delayed output is the later one. What is empty is not known.
struct Calibration {
  PcVerdict verdict = PcVerdict::kFailed;
  std::string words;                         // of a verdict that is not kAligned: why, and what to do
  std::optional<double> beforeMs;            // difference with the delay that was in force before
  std::optional<double> coarseMs;            // the same, as the service measured it
  std::optional<double> appliedMs;           // delay in force at the end
  std::optional<double> afterMs;             // difference with the delay that was tried last
  std::optional<fine::Interval> intervalMs;  // holds the last of the differences in 95 of 100 rooms
  std::optional<double> level17Db;           // of the last sound that was read
  std::optional<double> level19Db;
  std::string terminate = "etc";  // how the service's run ended, in its words
  double durationS = 0.0;
};

struct CalibrationOptions {
  bool coarse = false;        // leave the delay at what the service set
  double maximumDelayMs = 0;  // of the delay line
  // A calibration takes its time by it.
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
  std::function<void(const std::string& news)> onNews = [](const std::string&) {};
  std::function<void(const ServiceRun& run, const fine::Reading& reading)> onRun = [](const ServiceRun&,
                                                                                      const fine::Reading&) {};
};

// Throws nothing but std::bad_alloc: what goes wrong becomes a verdict.
Calibration Calibrate(LivingRoom& room, const CalibrationOptions& options);

}  // namespace orvex::tools
