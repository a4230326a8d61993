#include "pc/calibration_report.h"

#include <fmt/core.h>
#include <json/writer.h>

#include <cmath>

namespace orvex::tools {
namespace {

Json::Value OrNull(const std::optional<double>& value) {
  return value ? Json::Value(*value) : Json::Value();
}

// "+0.0" rather than "-0.0".
std::string Signed(double ms) {
  const double tenths = std::round(ms * 10.0);
  return fmt::format("{:+.1f}", tenths == 0.0 ? 0.0 : tenths / 10.0);
}

// The interval belongs to the last difference that is known.
std::string WithInterval(double differenceMs, const std::optional<fine::Interval>& intervalMs) {
  const std::string text = Signed(differenceMs);
  if (!intervalMs) {
    return text + " ms";
  }
  const double half = (intervalMs->high - intervalMs->low) / 2.0;
  return fmt::format("{} ± {:.1f} ms", text, std::ceil(half * 10.0 - 1e-9) / 10.0);  // never less than it is
}

std::string DifferencesInWords(const Calibration& calibration) {
  if (!calibration.beforeMs) {
    return "";
  }
  if (!calibration.afterMs) {
    return "difference " + WithInterval(*calibration.beforeMs, calibration.intervalMs);
  }
  // The delay that is in force is that of before, unless the outputs are aligned.
  return fmt::format("before {} ms, {} {}", Signed(*calibration.beforeMs),
                     calibration.verdict == PcVerdict::kAligned ? "now" : "with the delay that was tried",
                     WithInterval(*calibration.afterMs, calibration.intervalMs));
}

}  // namespace

std::string CalibrationJson(const Calibration& calibration) {
  Json::Value json(Json::objectValue);
  json["verdict"] = NameOf(calibration.verdict);
  json["reason"] = calibration.words.empty() ? Json::Value() : Json::Value(calibration.words);
  json["before_ms"] = OrNull(calibration.beforeMs);
  json["coarse_ms"] = OrNull(calibration.coarseMs);
  json["applied_ms"] = OrNull(calibration.appliedMs);
  json["after_ms"] = OrNull(calibration.afterMs);
  json["interval_ms"] = Json::Value();
  if (calibration.intervalMs) {
    json["interval_ms"].append(calibration.intervalMs->low);
    json["interval_ms"].append(calibration.intervalMs->high);
  }
  json["level_17_db"] = OrNull(calibration.level17Db);
  json["level_19_db"] = OrNull(calibration.level19Db);
  json["terminate"] = calibration.terminate;
  json["duration_s"] = calibration.durationS;
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "  ";
  writer["precision"] = 6;
  return Json::writeString(writer, json) + "\n";
}

std::string CalibrationText(const Calibration& calibration) {
  std::string text = NameOf(calibration.verdict);
  if (!calibration.words.empty()) {
    text += ": " + calibration.words;
  }
  if (const std::string differences = DifferencesInWords(calibration); !differences.empty()) {
    text += (calibration.words.empty() ? ": " : "; ") + differences;
  }
  if (calibration.appliedMs) {
    text += fmt::format("; delay {:.1f} ms", *calibration.appliedMs);
  }
  return text + "\n";
}

}  // namespace orvex::tools
