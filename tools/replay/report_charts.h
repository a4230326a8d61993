// The charts of a report, as SVG elements.
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
// The part around the pair, or around what came closest to one. None if the recording is short or has no such part.
std::optional<View> CloseUp(const RunRecord& run);

std::string DrawEvents(const RunRecord& run, const View& view);
std::string DrawTones(const RunRecord& run, const View& view);
std::string DrawNeighbours(const RunRecord& run, const View& view);
std::string DrawRatios(const RunRecord& run, const View& view);

}  // namespace orvex::tools
