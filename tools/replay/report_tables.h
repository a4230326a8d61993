// The tables of a report.
#pragma once

#include <string>

#include "replay/run_record.h"

namespace orvex::tools {

// One column per tone, from its ambient level to the number of its clean blocks.
std::string MakeToneTable(const RunRecord& run);

// The events in order. If there are very many, the table has the first ones and says how many follow.
std::string MakeEventTable(const RunRecord& run);

}  // namespace orvex::tools
