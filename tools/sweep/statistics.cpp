// Errors are summarised over the rooms with a result only, percentages are of all rooms.
#include "sweep/statistics.h"

#include <algorithm>
#include <cmath>

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

}  // namespace

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
  return statistics;
}

}  // namespace orvex::tools
