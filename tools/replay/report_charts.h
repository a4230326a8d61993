// The pictures of a report.
#pragma once

#include <optional>
#include <string>

#include "replay/chart.h"
#include "replay/run_record.h"

namespace orvex::tools {

// The whole recording, or a part of it.
struct View {
  std::string name;  // begins the charts' names
  Span buffers;
};

View WholeRecording(const RunRecord& run);
// Around the pair or what comes nearest to one; none when the whole recording shows every block well enough.
std::optional<View> CloseUp(const RunRecord& run);

std::string DrawEvents(const RunRecord& run, const View& view);
std::string DrawTones(const RunRecord& run, const View& view);
std::string DrawNeighbours(const RunRecord& run, const View& view);
std::string DrawRatios(const RunRecord& run, const View& view);

}  // namespace orvex::tools
