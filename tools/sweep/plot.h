// Figures of a sweep, drawn by gnuplot.
#pragma once

#include <ostream>
#include <string>

#include "plan.h"
#include "sweep.h"

namespace orvex::tools {

// Draws into `path`, an SVG or PNG by its ending: how the errors are distributed, error over true difference, and the
// share found, by row. Throws std::runtime_error: another ending, no gnuplot, a file that cannot be written.
void DrawFigures(const std::string& path, const Plan& plan, const SweepResult& result);

// Throws std::runtime_error when `path` has another ending or gnuplot is not installed: to be known before an hour's
// work.
void CheckFigures(const std::string& path);

// What gnuplot is told.
void WriteFigureScript(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result);

}  // namespace orvex::tools
