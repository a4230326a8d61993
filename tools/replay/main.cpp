// orvex-replay: feeds recordings to the receiver and prints what it reports.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "receiver_rig.h"
#include "recording.h"
#include "report_lines.h"

namespace {

using orvex::tools::ReceiverRig;
using orvex::tools::Recording;
using orvex::tools::ReportLines;

constexpr std::size_t kBlockBytes = 2 * OrvexReceiver::kBlockSamples;
constexpr int kExitResult = 0;
constexpr int kExitNoResult = 1;
constexpr int kExitBadInput = 2;

struct Arguments {
  std::vector<std::string> files;
  bool trace = false;
  bool hearable = false;
};

int Replay(const Recording& recording, const std::string& nameInReport, const Arguments& arguments) {
  ReportLines report(std::cout, nameInReport, arguments.trace);
  ReceiverRig rig(report, arguments.hearable);
  const std::vector<std::uint8_t>& bytes = recording.bytes;
  for (std::size_t at = 0; at < bytes.size(); at += kBlockBytes) {
    rig.Deliver(bytes.data() + at, static_cast<std::uint16_t>(std::min(kBlockBytes, bytes.size() - at)));
  }
  report.WriteSummary(rig);
  return rig.GetDifferenceS() != 0.0 ? kExitResult : kExitNoResult;
}

int ReplayAll(const Arguments& arguments) {
  int worst = kExitResult;
  for (const std::string& file : arguments.files) {
    try {
      const Recording recording = orvex::tools::ReadRecording(file);
      if (!recording.warning.empty()) {
        std::cerr << "orvex-replay: " << recording.warning << '\n';
      }
      worst = std::max(worst, Replay(recording, arguments.files.size() > 1 ? file : "", arguments));
    } catch (const orvex::tools::RecordingError& problem) {
      std::cerr << "orvex-replay: " << problem.what() << '\n';
      worst = kExitBadInput;
    }
  }
  return worst;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "Feeds recordings to the receiver, block by block as the remote would, and prints what it reports: one JSON "
      "object "
      "per line.\nExit code: 0 a difference was found in every file, 1 in some file none was found, 2 wrong usage or a "
      "file that cannot be read.");
  Arguments arguments;
  app.add_option("FILE", arguments.files, "debug dump (raw signed 16-bit little-endian mono) or WAV file")->required();
  app.add_flag("--trace", arguments.trace, "one object per analysed block, too: magnitudes and ratios");
  app.add_flag("--hearable", arguments.hearable, "set the audible setting: no tone is looked for");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return app.exit(problem) == 0 ? kExitResult : kExitBadInput;
  }
  return ReplayAll(arguments);
}
