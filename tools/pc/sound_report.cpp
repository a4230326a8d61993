#include "pc/sound_report.h"

#include <fmt/core.h>

#include <ostream>
#include <string>

#include "receiver/receiver_rig.h"
#include "replay/recording.h"
#include "replay/report_page.h"
#include "replay/run_record.h"

namespace orvex::tools {

namespace {

// The service hears the same sound through a capture of its own.
std::string NoteOn(const ServiceRun& run) {
  const std::string own =
      run.report.differenceS ? fmt::format("{:+.1f} ms", *run.report.differenceS * 1e3) : std::string("no difference");
  return "The service itself measured " + own +
         ". Below, its method is applied to this recording, whose blocks begin elsewhere: that gives a buffer more or "
         "less.";
}

}  // namespace

void WriteSoundReport(const OutputFile& file, const ServiceRun& run, const fine::Reading& reading) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(run.heard.data());
  const std::vector<std::uint8_t> recording(bytes, bytes + run.heard.size() * sizeof run.heard.front());
  RunRecord record(false);
  ReceiverRig rig({&record});
  Feed(recording, rig);
  file.Write([&](std::ostream& out) {
    out << MakeReportPage(record, {"what the microphone heard", NoteOn(run), run.heard}, reading);
  });
}

}  // namespace orvex::tools
