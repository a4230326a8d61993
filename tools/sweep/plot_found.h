// The figure of how many rooms had a result.
#pragma once

#include "sweep/plan.h"
#include "sweep/plot_drawing.h"
#include "sweep/sweep.h"

namespace orvex::tools {

// A line over the listed axis that has the most values, of those that have numbers if there is one, for each
// combination of what the other axes are. Names have places, and no line between them.
void DrawFound(PlotDrawing& drawing, const Plan& plan, const SweepResult& result);

}  // namespace orvex::tools
