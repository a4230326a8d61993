// A replay as one HTML page that loads nothing else.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "fine/fine_reading.h"
#include "replay/run_record.h"

namespace orvex::tools {

struct ReportSubject {
  std::string file;       // as the user names it
  std::string warning;    // about the recording, or empty
  std::size_t bytes = 0;  // of the recording's samples
};

// `fine`: shown, too, when there is one.
std::string MakeReportPage(const RunRecord& run, const ReportSubject& subject,
                           const std::optional<fine::Reading>& fine = std::nullopt);

}  // namespace orvex::tools
