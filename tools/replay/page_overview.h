// The table at the top of a page about several recordings: a line for each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fine/fine_reading.h"
#include "replay/run_record.h"

namespace orvex::tools {

struct OverviewLine {
  std::string file;
  std::string part;  // name of the element that the line leads to; empty: the recording could not be read
  std::string verdict;
  std::string style;  // of the verdict
  std::string difference;
  std::string fine;    // empty: not asked for
  std::string tone17;  // how strong it was, and what became of it
  std::string tone19;
};

OverviewLine MakeOverviewLine(const std::string& part, const std::string& file, const RunRecord& run,
                              const std::optional<fine::Reading>& fine);
OverviewLine MakeUnreadableLine(const std::string& file, const std::string& problem);

std::string MakeOverview(const std::vector<OverviewLine>& lines);

}  // namespace orvex::tools
