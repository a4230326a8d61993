// The tables of a report.
#pragma once

#include <string>

#include "replay/run_record.h"

namespace orvex::tools {

// One column per tone, from its ambient level to the number of its clean blocks.
std::string MakeToneTable(const RunRecord& run);

// The events in their order; of very many the first ones, and how many there are more.
std::string MakeEventTable(const RunRecord& run);

}  // namespace orvex::tools
