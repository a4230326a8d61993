// orvex-tv run: one calibration on a virtual television.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "options/whole_number.h"
#include "tv/commands.h"
#include "tv/errors.h"
#include "tv/event_records.h"
#include "tv/run_summary.h"
#include "tv/run_television.h"
#include "tv/verdict.h"

namespace orvex::tools {
namespace {

struct RunArguments {
  TelevisionOptions television;
  std::string service;
  bool json = false;
  bool verbose = false;
};

// --service, else ORVEX_SERVICE, else the program beside this one.
std::filesystem::path FindService(const std::string& given) {
  if (!given.empty()) {
    return given;
  }
  const char* const named = std::getenv("ORVEX_SERVICE");
  if (named != nullptr && *named != '\0') {
    return named;
  }
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orvex-service";
}

// Shows what happens while it happens.
class Watcher {
public:
  Watcher(const RunArguments& arguments, const RunTelevision& television)
      : m_Arguments(arguments), m_Follower([&television] { return television.DelayMs(); }) {}

  void OnLine(const std::string& line) {
    if (m_Arguments.verbose) {
      std::fprintf(stderr, "%s\n", line.c_str());
    }
    const auto news = m_Follower.Follow(line);
    if (news && !m_Arguments.json) {
      const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_Start;
      std::printf("%8.2f s  %s\n", elapsed.count(), news->c_str());
      std::fflush(stdout);
    }
  }

  const RunReport& Report() const { return m_Follower.GetReport(); }

private:
  const RunArguments& m_Arguments;
  LogFollower m_Follower;
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

// Those of this run only: a television that is kept has the records of earlier runs.
std::vector<Json::Value> EventsSince(const std::string& file, std::size_t countBefore) {
  std::vector<Json::Value> records = ReadEventRecords(file).records;
  records.erase(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(std::min(countBefore, records.size())));
  return records;
}

int Run(const RunArguments& arguments) {
  const RunTelevision television(arguments.television);
  const std::size_t eventsBefore = ReadEventRecords(television.EventFile()).records.size();
  RunSummary summary;
  summary.misalignmentBeforeMs = television.MisalignmentMs(television.DelayMs());
  Watcher watcher(arguments, television);
  summary.ending = RunService({FindService(arguments.service), television.Get().GetDirectory()},
                              [&](const std::string& line) { watcher.OnLine(line); });
  summary.report = watcher.Report();
  summary.delayAfterMs = television.DelayMs();
  summary.misalignmentAfterMs = television.MisalignmentMs(summary.delayAfterMs);
  summary.events = EventsSince(television.EventFile(), eventsBefore);
  if (const std::string problem = summary.ending.Problem(); !problem.empty()) {
    std::fprintf(stderr, "orvex-tv: %s\n", problem.c_str());
  }
  std::fputs((arguments.json ? SummaryJson(summary) : SummaryText(summary)).c_str(), stdout);
  return IsGood(VerdictOf(summary)) ? kExitGood : kExitFailed;
}

}  // namespace

void AddRunCommand(CLI::App& app, int& exitCode) {
  const auto arguments = std::make_shared<RunArguments>();
  CLI::App* const command = app.add_subcommand("run", "calibrate once and show what happens");
  TelevisionOptions& television = arguments->television;
  command->add_option("--tv", television.directory, "directory of the television, kept; default: a temporary one")
      ->type_name("DIR");
  command->add_option("--base-delay", television.baseDelayMs, "delay of the optical output before the run")
      ->type_name("MS")
      ->check(WholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
  command->add_option("--faults", television.faultsFile, "faults.json to inject")->type_name("FILE");
  command->add_option("--service", arguments->service, "the service; default: ORVEX_SERVICE, else beside orvex-tv")
      ->type_name("PATH");
  command->add_flag("--json", arguments->json, "print one JSON object and nothing else on stdout");
  command->add_flag("-v,--verbose", arguments->verbose, "show the service's log on stderr");
  television.room.AddTo(*command);
  command->callback([=, &exitCode] { exitCode = Run(*arguments); });
}

}  // namespace orvex::tools
