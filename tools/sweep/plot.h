// Figures of a sweep, drawn by gnuplot.
#pragma once

#include <ostream>
#include <string>

#include "sweep/plan.h"
#include "sweep/sweep.h"

namespace orvex::tools {

// Draws an SVG or PNG, by the ending of `path`: how the errors are distributed, error over true difference, and the
// share found, by row. Throws std::runtime_error: another ending, gnuplot is not there or has failed.
void DrawFigures(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result);

// Throws std::runtime_error when `path` has another ending or gnuplot is not installed: to be known before an hour's
// work.
void CheckFigures(const std::string& path);

// Writes the script for gnuplot, which prints the picture to its standard output.
void WriteFigureScript(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result);

}  // namespace orvex::tools
