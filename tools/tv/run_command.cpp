// orvex-tv run: calibrations on a virtual television.
#include <string.h>

#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include <fmt/core.h>

#include "linux/json_text.h"
#include "options/errors.h"
#include "output/standard_output.h"
#include "run/debug_files.h"
#include "run/log_colours.h"
#include "run/run_signals.h"
#include "tv/commands.h"
#include "tv/heard_report.h"
#include "tv/kept_folder.h"
#include "tv/one_run.h"
#include "tv/run_figures.h"
#include "tv/verdict.h"

namespace orvex::tools {
namespace {

struct RunArguments {
  TelevisionOptions television;
  std::optional<std::uint32_t> times;
  std::string keep;
  std::string report;
  std::string service;
  bool json = false;
  bool verbose = false;
};

void PrintProblem(const std::string& problem) {
  std::fprintf(stderr, "orvex-tv: %s\n", problem.c_str());
}

std::uintmax_t SizeOf(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return error ? 0 : size;
}

// All runs of a command. One that is interrupted, or of which nobody reads the output, is the last and leaves nothing.
class Runs {
public:
  Runs(const RunArguments& arguments, const TelevisionInput& input)
      : m_Arguments(arguments), m_Figures(arguments.times.value_or(1)) {
    if (!arguments.keep.empty()) {
      m_Kept.emplace(arguments.keep, arguments.times.has_value());
    }
    if (!arguments.report.empty()) {
      m_Report.emplace(arguments.report, Count(), InputFiles(arguments.television));
      if (m_Report->TakesStandardOutput() && arguments.json) {
        throw UsageError("--report -: takes standard output for the page, expected no --json beside it");
      }
    }
    m_Television.emplace(arguments.television, input);
  }

  int Run() {
    for (std::uint32_t run = 1; run <= Count() && !IsOver() && !m_IsUnkept; ++run) {
      m_Television->Prepare(run - 1);
      Add(run);
    }
    if (m_Arguments.times) {
      Say(m_Arguments.json ? port::CompactJson(m_Figures.ToJson()) + "\n" : m_Figures.ToText());
    }
    if (m_Report && !m_Report->Write() && !IsOver()) {
      PrintProblem("--report " + m_Arguments.report + ": nothing was recorded, so there is no new page");
    }
    return ExitCode();
  }

private:
  std::uint32_t Count() const { return m_Arguments.times.value_or(1); }
  bool IsOver() { return m_Signals.Interruption() != 0 || m_Out.HasFailed(); }

  void Add(std::uint32_t run) {
    const std::uintmax_t logStart = SizeOf(m_Television->LogFile());
    RunSummary summary = RunOnce(m_Arguments.service, *m_Television, m_Signals, Watcher());
    const bool isOver = IsOver();
    if (!isOver) {
      m_Figures.Add(summary);
      Leave(run, logStart, summary);
    }
    if (isOver || !m_Kept) {
      RemoveDebugFiles(summary.report);
    }
    if (const std::string problem = summary.ending.Problem(); !problem.empty()) {
      PrintProblem(problem);
    }
    if (!isOver || !m_Arguments.times) {
      Say(TextOf(run, summary));
    }
  }

  // What is left of a run beside its text.
  void Leave(std::uint32_t run, std::uintmax_t logStart, RunSummary& summary) {
    if (m_Report) {
      m_Report->Add(run, summary);
    }
    if (m_Kept) {
      Keep(run, logStart, summary);
    }
  }

  // What a run came to is told in any case.
  void Keep(std::uint32_t run, std::uintmax_t logStart, RunSummary& summary) {
    try {
      m_Kept->Keep(run, *m_Television, logStart, summary);
    } catch (const CommandError& problem) {
      PrintProblem(problem.what());
      m_IsUnkept = true;
    }
  }

  RunWatcher Watcher() {
    const auto onLine = [this](const std::string& line) {
      if (m_Arguments.verbose) {
        PrintLogLine(line);
      }
      return !m_Out.HasFailed();
    };
    const auto onNews = [this](const std::string& line) {
      if (!m_Arguments.json && !m_Arguments.times) {
        Say(line);
      }
    };
    return {onLine, onNews};
  }

  std::string TextOf(std::uint32_t run, const RunSummary& summary) const {
    if (m_Arguments.times) {
      return m_Arguments.json
                 ? port::CompactJson(SummaryValue(summary)) + "\n"
                 : fmt::format("  {:<24}{}\n", fmt::format("run {} of {}", run, Count()), VerdictInWords(summary));
    }
    return m_Arguments.json ? SummaryJson(summary) : SummaryText(summary);
  }

  // Standard output is the page's when that goes there.
  void Say(const std::string& text) {
    if (!m_Report || !m_Report->TakesStandardOutput()) {
      m_Out.Write(text);
    }
  }

  int ExitCode() {
    if (const int interruption = m_Signals.Interruption(); interruption != 0) {
      PrintProblem("interrupted by signal " + std::to_string(interruption) + " (" + ::strsignal(interruption) + ")");
      return kExitSignal + interruption;
    }
    if (m_Out.HasFailed()) {
      PrintProblem(m_Out.Problem());
      return kExitFailed;
    }
    return m_Figures.AreAllGood() && !m_IsUnkept ? kExitGood : kExitFailed;
  }

  const RunArguments& m_Arguments;
  RunSignals m_Signals;
  StandardOutput m_Out;
  RunFigures m_Figures;
  std::optional<HeardReport> m_Report;
  std::optional<KeptFolder> m_Kept;
  bool m_IsUnkept = false;  // a run could not be kept, and is the last
  std::optional<RunTelevision> m_Television;
};

// Standard input is read while an interrupt still ends the program.
int Run(const RunArguments& arguments) {
  const TelevisionInput input = ReadInput(arguments.television);
  return Runs(arguments, input).Run();
}

}  // namespace

void AddRunCommand(Command& program) {
  const auto arguments = std::make_shared<RunArguments>();
  Command& command = program.AddCommand("run", "calibrate and show what happens");
  TelevisionOptions& television = arguments->television;
  command.Add("--tv", television.directory, value::Folder(),
              "directory of the television, kept; default: what ORVEX_TV names, else a temporary one");
  command.Add("--base-delay", television.baseDelayMs,
              value::WholeNumber("MS", 0, std::numeric_limits<std::uint32_t>::max()),
              "delay of the optical output before the run");
  command.Add("--faults", television.faultsFile, value::File(), "faults.json to inject in this run; -: standard input");
  command.Add("--times", arguments->times, value::WholeNumber("N", 1, 1000000),
              "run so often, each from the same delay with another seed, and sum up what remains");
  command.Add("--keep", arguments->keep, value::Folder(),
              "keep recording, results, log, records and room of each run in this new folder");
  command.Add("--report", arguments->report, value::File("OUT.html"),
              "also write a page for a browser: what was heard, and why a difference was or was not found");
  command.Add("--service", arguments->service, value::File("PATH"),
              "the service; default: ORVEX_SERVICE, else beside orvex-tv");
  command.AddFlag(
      "--json", arguments->json,
      "print one JSON object and nothing else on stdout; with --times one a line, and one with the figures");
  command.AddFlag("-v,--verbose", arguments->verbose, "show the service's log on stderr");
  television.room.AddTo(command);
  command.AddFlag("--save-room", television.saveRoom, "make this room the television's own, for later runs too")
      .InGroup("Room");
  command.AddExample("orvex-tv run --optical-latency 80 --noise -55");
  command.AddExample("orvex-tv run --optical-muted --keep heard --report heard.html");
  command.AddExample("orvex-tv run --times 10 --json");
  command.SetAction([=] { return Run(*arguments); });
}

}  // namespace orvex::tools
