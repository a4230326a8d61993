// orvex-replay: feeds recordings to the receiver and prints what it reports.
#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "fine/fine_reading.h"
#include "options/program.h"
#include "output/output_file.h"
#include "progress/progress.h"
#include "receiver/receiver_rig.h"
#include "replay/recording.h"
#include "replay/report_lines.h"
#include "replay/report_page.h"
#include "replay/run_record.h"

namespace {

using orvex::tools::OutputError;
using orvex::tools::OutputFile;
using orvex::tools::Progress;
using orvex::tools::ReceiverRig;
using orvex::tools::Recording;
using orvex::tools::RecordingError;
using orvex::tools::ReportLines;
using orvex::tools::ReportPage;
using orvex::tools::RunRecord;

constexpr int kExitResult = orvex::tools::kExitGood;
constexpr int kExitNoResult = orvex::tools::kExitFailed;
constexpr int kExitBadInput = orvex::tools::kExitUsage;

struct Arguments {
  std::vector<std::string> files;
  std::optional<std::string> report;
  bool trace = false;
  bool hearable = false;
  bool fine = false;
};

orvex::fine::Reading ReadFinely(const std::vector<std::int16_t>& samples) {
  static const orvex::fine::FineReader reader;
  Progress progress("orvex-replay", "steps of the fine reading", reader.Steps());
  return reader.Read({samples.data(), samples.size()}, [&](std::size_t done) { progress.Show(done); });
}

// `page`: takes the replay, too, when there is one.
int Replay(const Recording& recording, const std::string& file, const Arguments& arguments, std::ostream& out,
           ReportPage* page) {
  ReportLines lines(out, arguments.files.size() > 1 ? file : "", arguments.trace);
  RunRecord run(arguments.hearable);
  ReceiverRig rig({&lines, &run}, arguments.hearable);
  {
    Progress progress("orvex-replay", "bytes", recording.bytes.size());
    orvex::tools::Feed(recording.bytes, rig, [&](std::size_t done) { progress.Show(done); });
  }
  lines.WriteSummary(rig, run);
  const std::vector<std::int16_t> samples = orvex::tools::SamplesOf(recording);
  std::optional<orvex::fine::Reading> fine;
  if (arguments.fine) {
    fine = ReadFinely(samples);
    lines.WriteFine(*fine);
  }
  if (page != nullptr) {
    page->Add(run, {file, recording.warning, samples}, fine);
  }
  return rig.GetDifferenceS() != 0.0 ? kExitResult : kExitNoResult;
}

int ReplayAll(const Arguments& arguments, const OutputFile* output) {
  int worst = kExitResult;
  ReportPage page(arguments.files.size());
  std::ostream none(nullptr);
  std::ostream& out = output != nullptr && output->IsStandardOutput() ? none : std::cout;
  for (const std::string& file : arguments.files) {
    try {
      const Recording recording = orvex::tools::ReadRecording(file);
      if (!recording.warning.empty()) {
        std::cerr << "orvex-replay: " << recording.warning << '\n';
      }
      worst = std::max(worst, Replay(recording, file, arguments, out, output != nullptr ? &page : nullptr));
    } catch (const RecordingError& problem) {
      std::cerr << "orvex-replay: " << problem.what() << '\n';
      page.AddUnreadable(file, problem.what());
      worst = kExitBadInput;
    }
  }
  if (output != nullptr && !page.IsEmpty()) {
    output->Write([&](std::ostream& target) { target << page.Finish(); });
  }
  return worst;
}

// None when no report is asked for.
std::optional<OutputFile> OpenReport(const Arguments& arguments) {
  if (!arguments.report) {
    return std::nullopt;
  }
  const std::string option = "--report " + *arguments.report;
  OutputFile page(*arguments.report, arguments.files);
  if (page.IsStandardOutput() && arguments.trace) {
    throw OutputError(option + ": takes standard output for the page, expected no --trace beside it");
  }
  return page;
}

void DefineOptions(orvex::tools::Program& program, Arguments& arguments) {
  namespace value = orvex::tools::value;
  program
      .Add("FILE", arguments.files, value::File(),
           "debug dump (raw signed 16-bit little-endian mono) or WAV file; -: standard input")
      .Required();
  program.AddFlag("--trace", arguments.trace, "one object per analysed block, too: magnitudes and ratios");
  program.AddFlag("--hearable", arguments.hearable, "set the audible setting: no tone is looked for");
  program.AddFlag(
      "--fine", arguments.fine,
      "one more object: the difference between the tones to hundredths of a millisecond, with the interval that "
      "holds the true one in 95 of 100 rooms, or the reason why it is not known that well");
  program.Add("--report", arguments.report, value::File("OUT.html"),
              "also write a page for a browser: levels and thresholds over time, the pair, and why a difference was "
              "or was not found; of several files one page with an overview; -: to standard output, in place of the "
              "lines");
}

}  // namespace

int main(int argc, char** argv) {
  orvex::tools::Program program(
      "orvex-replay",
      "Feeds recordings to the receiver, block by block as the remote would, and prints what it reports: one JSON "
      "object per line. The summary has run_difference_s, the first difference found, by which a run corrects the "
      "delay, and difference_s, the receiver's last one; null: none.",
      "0 a difference was found in every file, 1 in some file none was found, 2 wrong usage, or a file or standard "
      "output that cannot be read or written",
      kExitBadInput);
  Arguments arguments;
  DefineOptions(program, arguments);
  program.AddExample("orvex-replay --fine recording.wav");
  program.AddExample("orvex-replay --report heard.html recording.wav");
  program.SetAction([&] {
    if (std::count(arguments.files.begin(), arguments.files.end(), "-") > 1) {
      throw orvex::tools::UsageError("- is given more than once, expected standard input to be read once");
    }
    const std::optional<OutputFile> page = OpenReport(arguments);
    return ReplayAll(arguments, page ? &*page : nullptr);
  });
  return program.Run(argc, argv);
}
