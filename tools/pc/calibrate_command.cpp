// orvex-pc calibrate: brings the two outputs in step.
#include <fmt/core.h>

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "output/output_file.h"
#include "output/standard_output.h"
#include "pc/calibration.h"
#include "pc/calibration_report.h"
#include "pc/commands.h"
#include "pc/computer.h"
#include "pc/last_calibration.h"
#include "pc/sound_report.h"
#include "pipewire/client/delay_node.h"
#include "run/log_colours.h"

namespace orvex::tools {
namespace {

struct CalibrateArguments {
  bool json = false;
  bool coarse = false;
  bool verbose = false;
  std::string report;
  std::string service;
};

// What happens, line by line with its time, for people.
class News {
public:
  explicit News(bool isShown) : m_IsShown(isShown) {}

  void Show(const std::string& text) {
    if (m_IsShown) {
      const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_Start;
      m_Out.Write(fmt::format("{:8.2f} s  {}\n", elapsed.count(), text));
    }
  }

private:
  const bool m_IsShown;
  StandardOutput m_Out;
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

// The page takes all of it.
bool TakesStandardOutput(const OutputFile* report) {
  return report != nullptr && report->IsStandardOutput();
}

Calibration CalibrateThisComputer(const CalibrateArguments& arguments, RunSignals& signals, const OutputFile* report) {
  News news(!arguments.json && !TakesStandardOutput(report));
  const auto show = [&](const std::string& text) { news.Show(text); };
  Calibration result;
  try {
    Computer computer(pipewire::ReadPcConfig(pipewire::PcConfigFile()),
                      FindService(arguments.service, "orvex-service-pc"), signals, {show, [&](const std::string& line) {
                                                                                      if (arguments.verbose) {
                                                                                        PrintLogLine(line);
                                                                                      }
                                                                                    }});
    computer.Check();
    CalibrationOptions options;
    options.coarse = arguments.coarse;
    options.maximumDelayMs = pipewire::kMaximumDelayMs;
    options.onNews = show;
    options.onRun = [&](const ServiceRun& run, const fine::Reading& reading) {
      if (report != nullptr) {
        WriteSoundReport(*report, run, reading);
      }
    };
    result = Calibrate(computer, options);
  } catch (const MicrophoneProblem& problem) {
    result.verdict = PcVerdict::kNoMicrophone;
    result.words = problem.what();
  } catch (const std::runtime_error& problem) {
    result.words = problem.what();
  }
  return result;
}

int RunCalibrate(const CalibrateArguments& arguments) {
  std::optional<OutputFile> report;
  if (!arguments.report.empty()) {
    report.emplace(arguments.report, std::vector<std::string>{pipewire::PcConfigFile().string()});
    if (report->IsStandardOutput() && arguments.json) {
      throw UsageError("--report -: takes standard output for the page, expected no --json beside it");
    }
  }
  RunSignals signals;
  const OutputFile* const page = report ? &*report : nullptr;
  const Calibration result = CalibrateThisComputer(arguments, signals, page);
  StandardOutput out;
  if (!TakesStandardOutput(page)) {
    out.Write(arguments.json ? CalibrationJson(result) : CalibrationText(result));
  }
  KeepLastCalibration(result);
  if (const int number = signals.Interruption(); number != 0) {
    return kExitSignal + number;
  }
  return result.verdict == PcVerdict::kAligned && !out.HasFailed() ? kExitGood : kExitFailed;
}

}  // namespace

void AddCalibrateCommand(Command& program) {
  const auto arguments = std::make_shared<CalibrateArguments>();
  Command& command = program.AddCommand(
      "calibrate", "play the test sound, listen, and set the delay so that both outputs are heard together");
  command.AddFlag("--json", arguments->json, "print one JSON object and nothing else on stdout");
  command.AddFlag("--coarse", arguments->coarse, "leave the delay at what the service set, exact to 17 ms");
  command.Add("--report", arguments->report, value::File("OUT.html"),
              "also write a page for a browser: what was heard, and how it was read");
  command.Add("--service", arguments->service, value::File("PATH"),
              "the service; default: ORVEX_SERVICE, else beside orvex-pc");
  command.AddFlag("-v,--verbose", arguments->verbose, "show the service's log on stderr");
  command.AddExample("orvex-pc calibrate");
  command.AddExample("orvex-pc calibrate --report heard.html");
  command.SetAction([=] { return RunCalibrate(*arguments); });
}

}  // namespace orvex::tools
