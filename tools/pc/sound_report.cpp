#include "pc/sound_report.h"

#include <ostream>

#include "receiver/receiver_rig.h"
#include "replay/recording.h"
#include "replay/report_page.h"
#include "replay/run_record.h"

namespace orvex::tools {

void WriteSoundReport(const OutputFile& file, const ServiceRun& run, const fine::Reading& reading) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(run.heard.data());
  const std::vector<std::uint8_t> recording(bytes, bytes + run.heard.size() * sizeof run.heard.front());
  RunRecord record(false);
  ReceiverRig rig({&record});
  Feed(recording, rig);
  file.Write([&](std::ostream& out) {
    out << MakeReportPage(record, {"what the microphone heard", "", run.heard}, reading);
  });
}

}  // namespace orvex::tools
