// What each chart of a report shows, in sentences, for those who cannot see it.
#pragma once

#include <string>

#include "replay/run_record.h"
#include "replay/view.h"

namespace orvex::tools {

std::string DescribeTones(const RunRecord& run, const View& view);
std::string DescribeRatios(const RunRecord& run, const View& view);
std::string DescribeNeighbours(const RunRecord& run, const View& view);
std::string DescribeEvents(const RunRecord& run, const View& view);
std::string DescribeSpectrogram(const RunRecord& run, const View& view);

}  // namespace orvex::tools
