// The tables of a report.
#pragma once

#include <string>

#include "replay/run_record.h"
#include "replay/text.h"
#include "replay/view.h"

namespace orvex::tools {

// One column per tone, from its ambient level to the number of its clean blocks.
std::string MakeToneTable(const RunRecord& run);

// The events in order. If there are very many, the table has the first ones and says how many follow.
std::string MakeEventTable(const RunRecord& run, const PagePart& part);

// What the charts of a view show, folded away until it is asked for. Where there are very many buffers, each row has
// the highest values of several.
std::string MakeValueTable(const RunRecord& run, const View& view);

}  // namespace orvex::tools
