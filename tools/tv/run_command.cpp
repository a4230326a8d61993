// orvex-tv run: one calibration on a virtual television.
#include <string.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/core.h>

#include "options/errors.h"
#include "output/standard_output.h"
#include "run/run_signals.h"
#include "tv/commands.h"
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

void PrintProblem(const std::string& problem) {
  std::fprintf(stderr, "orvex-tv: %s\n", problem.c_str());
}

// Shows what happens while it happens.
class Watcher {
public:
  Watcher(const RunArguments& arguments, const RunTelevision& television, StandardOutput& out)
      : m_Arguments(arguments), m_Out(out), m_Follower([&television] { return television.DelayMs(); }) {}

  // False: nobody sees it any more.
  bool OnLine(const std::string& line) {
    if (m_Arguments.verbose) {
      std::fprintf(stderr, "%s\n", line.c_str());
    }
    const auto news = m_Follower.Follow(line);
    if (news && !m_Arguments.json) {
      m_Out.Write(TimeStamp() + *news + "\n");
    }
    return !m_Out.HasFailed();
  }

  const RunReport& Report() const { return m_Follower.GetReport(); }

private:
  std::string TimeStamp() const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_Start;
    return fmt::format("{:8.2f} s  ", elapsed.count());
  }

  const RunArguments& m_Arguments;
  StandardOutput& m_Out;
  LogFollower m_Follower;
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

// Those of this run only: a television that is kept has the records of earlier runs.
std::vector<Json::Value> EventsSince(const std::filesystem::path& file, std::size_t countBefore) {
  std::vector<Json::Value> records = ReadEventRecords(file).records;
  records.erase(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(std::min(countBefore, records.size())));
  return records;
}

RunSummary Calibrate(const RunArguments& arguments, RunSignals& signals, StandardOutput& out) {
  const RunTelevision television(arguments.television);
  const std::size_t eventsBefore = ReadEventRecords(television.EventFile()).records.size();
  RunSummary summary;
  summary.misalignmentBeforeMs = television.MisalignmentMs(television.DelayMs());
  Watcher watcher(arguments, television, out);
  summary.ending = RunService({FindService(arguments.service, "orvex-service"), television.Environment()}, signals,
                              [&](const std::string& line) { return watcher.OnLine(line); });
  summary.report = watcher.Report();
  summary.delayAfterMs = television.DelayMs();
  summary.misalignmentAfterMs = television.MisalignmentMs(summary.delayAfterMs);
  summary.events = EventsSince(television.EventFile(), eventsBefore);
  return summary;
}

// What the service has left of its recordings.
void RemoveDebugFiles(RunReport& report) {
  for (const std::string& file : report.debugFiles) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
  }
  report.debugFiles.clear();
  report.dumpFile.clear();
  report.resultFile.clear();
}

int ExitCodeOf(const RunSummary& summary, int interruption, const StandardOutput& out) {
  if (interruption != 0) {
    PrintProblem("interrupted by signal " + std::to_string(interruption) + " (" + ::strsignal(interruption) + ")");
    return kExitSignal + interruption;
  }
  if (out.HasFailed()) {
    PrintProblem(out.Problem());
    return kExitFailed;
  }
  return IsGood(VerdictOf(summary)) ? kExitGood : kExitFailed;
}

// A run that is interrupted, or of which nobody reads the output to its end, leaves nothing behind.
int Run(const RunArguments& arguments) {
  RunSignals signals;
  StandardOutput out;
  RunSummary summary = Calibrate(arguments, signals, out);
  if (signals.Interruption() != 0 || out.HasFailed()) {
    RemoveDebugFiles(summary.report);
  }
  if (const std::string problem = summary.ending.Problem(); !problem.empty()) {
    PrintProblem(problem);
  }
  out.Write(arguments.json ? SummaryJson(summary) : SummaryText(summary));
  const int interruption = signals.Interruption();
  if (interruption != 0 || out.HasFailed()) {
    RemoveDebugFiles(summary.report);
  }
  return ExitCodeOf(summary, interruption, out);
}

}  // namespace

void AddRunCommand(Command& program) {
  const auto arguments = std::make_shared<RunArguments>();
  Command& command = program.AddCommand("run", "calibrate once and show what happens");
  TelevisionOptions& television = arguments->television;
  command.Add("--tv", television.directory, value::Folder(),
              "directory of the television, kept; default: what ORVEX_TV names, else a temporary one");
  command.Add("--base-delay", television.baseDelayMs,
              value::WholeNumber("MS", 0, std::numeric_limits<std::uint32_t>::max()),
              "delay of the optical output before the run");
  command.Add("--faults", television.faultsFile, value::File(), "faults.json to inject in this run; -: standard input");
  command.Add("--service", arguments->service, value::File("PATH"),
              "the service; default: ORVEX_SERVICE, else beside orvex-tv");
  command.AddFlag("--json", arguments->json, "print one JSON object and nothing else on stdout");
  command.AddFlag("-v,--verbose", arguments->verbose, "show the service's log on stderr");
  television.room.AddTo(command);
  command.AddFlag("--save-room", television.saveRoom, "make this room the television's own, for later runs too")
      .InGroup("Room");
  command.AddExample("orvex-tv run --optical-latency 80 --noise -55");
  command.AddExample("orvex-tv run --tv /tmp/mytv --json");
  command.SetAction([=] { return Run(*arguments); });
}

}  // namespace orvex::tools
