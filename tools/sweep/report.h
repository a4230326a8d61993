// A sweep's table and its CSV file.
#pragma once

#include <ostream>

#include "sweep/plan.h"
#include "sweep/sweep.h"

namespace orvex::tools {

// One line per row: what the listed axes are, then the figures. A last line says when rooms are missing.
void WriteTable(std::ostream& out, const Plan& plan, const SweepResult& result);

// One line per room: row and room from 1, the drawn values, what became of it. Empty: no such figure.
void WriteCsv(std::ostream& out, const Plan& plan, const SweepResult& result);

}  // namespace orvex::tools
