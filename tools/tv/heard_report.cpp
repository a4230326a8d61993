#include "tv/heard_report.h"

#include <ostream>

#include "receiver/receiver_rig.h"
#include "replay/recording.h"
#include "replay/run_record.h"

namespace orvex::tools {

void HeardReport::Add(std::uint32_t run, const RunSummary& summary) {
  const std::string name = "run " + std::to_string(run);
  if (summary.report.dumpFile.empty()) {
    m_Page.AddUnreadable(name, "nothing was recorded");
    return;
  }
  try {
    const Recording recording = ReadRecording(summary.report.dumpFile);
    RunRecord record(false);
    ReceiverRig rig({&record});
    Feed(recording.bytes, rig);
    m_Page.Add(record, {name, recording.warning, SamplesOf(recording)});
  } catch (const RecordingError& problem) {
    m_Page.AddUnreadable(name, problem.what());
  }
}

bool HeardReport::Write() const {
  if (m_Page.IsEmpty()) {
    return false;
  }
  m_File.Write([&](std::ostream& out) { out << m_Page.Finish(); });
  return true;
}

}  // namespace orvex::tools
