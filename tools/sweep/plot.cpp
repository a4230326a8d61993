// Title, caption and description of the figures.
#include "sweep/plot.h"

#include <fmt/format.h>

#include <filesystem>
#include <stdexcept>

#include "sweep/plot_drawing.h"
#include "sweep/plot_found.h"
#include "sweep/plot_panels.h"

namespace orvex::tools {
namespace {

// As a shell reads it.
std::string Quoted(const std::string& word) {
  const std::string plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./,:";
  if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) {
    return word;
  }
  std::string quoted;
  for (const char c : word) {
    quoted += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return "'" + quoted + "'";
}

std::string Title(const Plan& plan) {
  std::string names;
  for (const Axis axis : plan.ListedAxes()) {
    names += (names.empty() ? " by " : ", ") + std::string(AxisKinds()[axis].name);
  }
  return "How well the receiver measures" + names;
}

// What the figures show, row by row.
std::string Description(const Plan& plan, const SweepResult& result) {
  std::string text;
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    const Statistics statistics = Summarise(result.rows[row]);
    const ShareInterval interval = WilsonInterval(statistics.foundPercent, statistics.rooms);
    const std::string name = plan.Name(plan.ListedAxes(), row);
    text += fmt::format("{}: {:.2f} % found, between {:.2f} and {:.2f} % with 95 % confidence",
                        name.empty() ? "All rooms" : name, statistics.foundPercent, interval.lowPercent,
                        interval.highPercent);
    text += statistics.foundPercent > 0.0
                ? fmt::format("; error: bias {:.2f} ms, RMS {:.2f} ms, 95 % within {:.1f} ms, worst {:.1f} ms.\n",
                              statistics.biasMs, statistics.rmsMs, statistics.p95Ms, statistics.worstMs)
                : ".\n";
  }
  return text;
}

}  // namespace

std::string Text(const SweepCommand& command) {
  std::string text = fmt::format("orvex-sweep --rooms {} --seed {}", command.rooms, command.seed);
  for (const auto& [axis, value] : command.axes) {
    const AxisKind& kind = AxisKinds()[axis];
    if (value != kind.byDefault) {
      // A value that begins with "-" is not taken for an option.
      text += fmt::format(" --{}{}{}", kind.name, value[0] == '-' ? '=' : ' ', value);
    }
  }
  for (const std::string& recording : command.recordings) {
    text += (&recording == &command.recordings.front() ? " --recording " : " ") + Quoted(recording);
  }
  return text;
}

void DrawFigures(std::ostream& out, const SweepCommand& command, const Plan& plan, const SweepResult& result) {
  PlotDrawing drawing;
  drawing.AddLines("heading", Title(plan));
  drawing.AddLines("command", Text(command));
  drawing.AddLines("soft",
                   fmt::format("Rooms: {}{}. Seed: {}.", command.rooms,
                               plan.Rows() == 1 ? "" : fmt::format(" in each of {} rows", plan.Rows()), command.seed));
  DrawFound(drawing, plan, result);
  DrawErrors(drawing, plan, result);
  DrawErrorsOverDifference(drawing, plan, result);
  out << drawing.Finish(Title(plan), Text(command) + ".\n" + Description(plan, result));
}

void CheckFigures(const std::string& path) {
  if (std::filesystem::path(path).extension() != ".svg") {
    throw std::runtime_error(path + ": expected a name that ends in .svg");
  }
}

}  // namespace orvex::tools
