// Replays as one HTML page that loads nothing else and runs no script.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fine/fine_reading.h"
#include "replay/page_overview.h"
#include "replay/run_record.h"

namespace orvex::tools {

struct ReportSubject {
  std::string file;                   // as the user names it
  std::string warning;                // about the recording, or empty
  std::vector<std::int16_t> samples;  // of the recording
};

// Collects what the page has about each recording, in the order in which they are added.
class ReportPage {
public:
  // `recordings`: how many will be added. Above the parts of several stands an overview with a line for each.
  explicit ReportPage(std::size_t recordings) : m_IsOfSeveral(recordings > 1) {}

  // `fine`: shown, too, when there is one.
  void Add(const RunRecord& run, const ReportSubject& subject, const std::optional<fine::Reading>& fine = std::nullopt);
  void AddUnreadable(const std::string& file, const std::string& problem);

  // Whether none of the recordings could be read.
  bool IsEmpty() const { return m_Parts.empty(); }
  std::string Finish() const;

private:
  const bool m_IsOfSeveral;
  std::string m_Title;
  std::vector<OverviewLine> m_Lines;  // one for each recording
  std::string m_Parts;
};

// The page about one recording.
std::string MakeReportPage(const RunRecord& run, const ReportSubject& subject,
                           const std::optional<fine::Reading>& fine = std::nullopt);

}  // namespace orvex::tools
