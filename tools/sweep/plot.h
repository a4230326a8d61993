// Figures of a sweep, as an SVG.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "sweep/plan.h"
#include "sweep/sweep.h"

namespace orvex::tools {

// What the caption names, so that the figures can be drawn again.
struct SweepCommand {
  std::map<Axis, std::string> axes;  // as they were given; what is the default is not named
  std::size_t rooms = 0;             // of each row
  std::uint64_t seed = 1;
  std::vector<std::string> recordings;
};

// "orvex-sweep --rooms 1000 --seed 1 --tone-db 46,40"
std::string Text(const SweepCommand& command);

// Draws the share found, how the errors are distributed, and error over true difference.
void DrawFigures(std::ostream& out, const SweepCommand& command, const Plan& plan, const SweepResult& result);

// Throws std::runtime_error when `path` is not "-" and has another ending than .svg: to be known before an hour's work.
void CheckFigures(const std::string& path);

}  // namespace orvex::tools
