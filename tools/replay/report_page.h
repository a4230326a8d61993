// A replay as one HTML page that loads nothing else.
#pragma once

#include <cstddef>
#include <string>

#include "replay/run_record.h"

namespace orvex::tools {

struct ReportSubject {
  std::string file;       // as the user names it
  std::string warning;    // about the recording, or empty
  std::size_t bytes = 0;  // of the recording's samples
};

std::string MakeReportPage(const RunRecord& run, const ReportSubject& subject);

}  // namespace orvex::tools
