// Errors are summarised over the rooms with a result only, percentages are of all rooms.
#include "sweep/statistics.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvex::tools {
namespace {

void SummariseErrors(std::vector<double> errors, Statistics& statistics) {
  if (errors.empty()) {
    return;
  }
  const auto count = static_cast<double>(errors.size());
  double squares = 0.0;
  for (double& error : errors) {
    statistics.biasMs += error / count;
    squares += error * error;
    error = std::abs(error);
  }
  statistics.rmsMs = std::sqrt(squares / count);
  std::sort(errors.begin(), errors.end());
  statistics.p95Ms = errors[static_cast<std::size_t>(std::ceil(0.95 * count)) - 1];
  statistics.worstMs = errors.back();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2.0;
}

void SummariseReadings(const std::vector<RoomResult>& results, Statistics& statistics) {
  std::vector<double> halfWidthsMs;
  double held = 0.0;
  double far = 0.0;
  for (const RoomResult& result : results) {
    if (result.found) {
      halfWidthsMs.push_back(result.halfWidthMs);
      held += result.held ? 1.0 : 0.0;
      far += std::abs(result.errorMs) > kFarMs ? 1.0 : 0.0;
    }
  }
  if (halfWidthsMs.empty()) {
    return;
  }
  const double percent = 100.0 / static_cast<double>(halfWidthsMs.size());
  statistics.heldPercent = held * percent;
  statistics.farPercent = far * percent;
  statistics.halfWidthMs = Median(std::move(halfWidthsMs));
}

}  // namespace

// E. B. Wilson, Probable Inference, the Law of Succession, and Statistical Inference, 1927.
ShareInterval WilsonInterval(double percent, std::size_t rooms) {
  if (rooms == 0) {
    return {0.0, 100.0};
  }
  constexpr double kZ = 1.959964;  // 95 % of a normal distribution lie within so many standard deviations
  const double share = percent / 100.0;
  const double spread = kZ * kZ / static_cast<double>(rooms);
  const double middle = (share + spread / 2.0) / (1.0 + spread);
  const double half = std::sqrt(spread * std::max(share * (1.0 - share), 0.0) + spread * spread / 4.0) / (1.0 + spread);
  return {100.0 * std::max(middle - half, 0.0), 100.0 * std::min(middle + half, 1.0)};
}

Statistics Summarise(const std::vector<RoomResult>& results) {
  Statistics statistics;
  statistics.rooms = results.size();
  const double percent = 100.0 / static_cast<double>(std::max<std::size_t>(results.size(), 1));
  std::vector<double> errors;
  for (const RoomResult& result : results) {
    statistics.decidedMs += result.decidedMs * percent / 100.0;
    statistics.endedMs += result.endedMs * percent / 100.0;
    statistics.abnormalPercent += result.abnormal ? percent : 0.0;
    if (!result.found) {
      continue;
    }
    errors.push_back(result.errorMs);
    statistics.foundPercent += percent;
    statistics.falsePercent += result.isFalse ? percent : 0.0;
    statistics.changedPercent += result.changed ? percent : 0.0;
    statistics.offGridPercent += std::abs(result.errorMs) > kOffGridMs ? percent : 0.0;
    statistics.worsePercent += std::abs(result.remainingMs) > std::abs(result.beforeMs) + kVoiceBlockMs ? percent : 0.0;
  }
  SummariseErrors(std::move(errors), statistics);
  SummariseReadings(results, statistics);
  return statistics;
}

}  // namespace orvex::tools
