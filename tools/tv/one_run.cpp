#include "tv/one_run.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include <fmt/core.h>

#include "run/debug_files.h"
#include "tv/event_records.h"

namespace orvex::tools {
namespace {

std::vector<Json::Value> EventsSince(const std::filesystem::path& file, std::size_t countBefore) {
  std::vector<Json::Value> records = ReadEventRecords(file).records;
  records.erase(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(std::min(countBefore, records.size())));
  return records;
}

}  // namespace

RunSummary RunOnce(const std::string& service, const RunTelevision& television, RunSignals& signals,
                   const RunWatcher& watcher) {
  const std::size_t eventsBefore = ReadEventRecords(television.EventFile()).records.size();
  const auto start = std::chrono::steady_clock::now();
  const timespec begin = FileTimeNow();
  LogFollower follower([&] { return television.DelayMs(); });
  RunSummary summary;
  summary.misalignmentBeforeMs = television.MisalignmentMs(television.DelayMs());
  summary.ending = RunService(
      {FindService(service, "orvex-service"), television.Environment()}, signals, [&](const std::string& line) {
        if (const auto news = follower.Follow(line)) {
          const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
          watcher.onNews(fmt::format("{:8.2f} s  {}\n", elapsed.count(), *news));
        }
        return watcher.onLine(line);
      });
  summary.report = follower.GetReport();
  ForgetForeignFiles(summary.report, begin);
  summary.delayAfterMs = television.DelayMs();
  summary.misalignmentAfterMs = television.MisalignmentMs(summary.delayAfterMs);
  summary.events = EventsSince(television.EventFile(), eventsBefore);
  return summary;
}

}  // namespace orvex::tools
