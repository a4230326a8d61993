// The charts of a report, as SVG elements.
#pragma once

#include <string>

#include "replay/run_record.h"
#include "replay/view.h"

namespace orvex::tools {

std::string DrawEvents(const RunRecord& run, const View& view);
// `hasReadouts`: the levels of the buffer that is pointed at stand below the chart.
std::string DrawTones(const RunRecord& run, const View& view, bool hasReadouts);
std::string DrawNeighbours(const RunRecord& run, const View& view);
std::string DrawRatios(const RunRecord& run, const View& view);

// The style of what belongs to a tone.
const char* StyleOf(Tone tone);
// The bands of the recording's phases, and of what lies behind its end.
void AddPhases(Chart& chart, const RunRecord& run, const View& view);
// The pairs that lie within the view.
std::vector<RecordedEvent> PairsWithin(const RunRecord& run, const View& view);
// "+33.0 ms" of the run's own pair; other pairs have no label.
std::string PairLabel(const RunRecord& run, const RecordedEvent& pair);

}  // namespace orvex::tools
