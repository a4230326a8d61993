// Small panels, one for each row of the table, that all have the same scales.
#pragma once

#include "sweep/plan.h"
#include "sweep/plot_drawing.h"
#include "sweep/sweep.h"

namespace orvex::tools {

// Errors that are further from 0 are counted or drawn at the edge. Results that are false begin 2 ms before.
constexpr long kShownErrorMs = 35;

// How the errors are distributed: the share of the row's rooms in each millisecond.
void DrawErrors(PlotDrawing& drawing, const Plan& plan, const SweepResult& result);

// Over classes of the true difference the median of the errors, and between which ones 90 % of them are. Draws nothing
// when all rooms have the same difference.
void DrawErrorsOverDifference(PlotDrawing& drawing, const Plan& plan, const SweepResult& result);

}  // namespace orvex::tools
