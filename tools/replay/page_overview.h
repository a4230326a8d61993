// The table at the top of a page about several recordings: a line for each.
#pragma once

#include <optional>
#include <string>

#include "fine/fine_reading.h"
#include "replay/run_record.h"

namespace orvex::tools {

// `part`: the element's name that the line leads to.
std::string MakeOverviewLine(const std::string& part, const std::string& file, const RunRecord& run,
                             const std::optional<fine::Reading>& fine);
// The line of a recording that cannot be read.
std::string MakeOverviewLine(const std::string& file, const std::string& problem);

std::string MakeOverview(const std::string& lines);

}  // namespace orvex::tools
