// Title, caption and description of the figures.
#include "sweep/plot.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include "linux/printable_text.h"
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

std::vector<std::string> Words(const SweepCommand& command) {
  std::vector<std::string> words{"orvex-sweep", "--rooms", std::to_string(command.rooms), "--seed",
                                 std::to_string(command.seed)};
  for (const auto& [axis, value] : command.axes) {
    const AxisKind& kind = AxisKinds()[axis];
    if (value == kind.byDefault) {
      continue;
    }
    words.push_back(std::string("--") + kind.name);
    if (value[0] == '-') {
      words.back() += '=' + value;  // else it would be taken for an option
    } else {
      words.push_back(value);
    }
  }
  if (!command.recordings.empty()) {
    words.emplace_back("--recording");
    std::transform(command.recordings.begin(), command.recordings.end(), std::back_inserter(words),
                   [](const std::string& recording) { return Quoted(port::Printable(recording)); });
  }
  return words;
}

// Lines that a shell puts together again.
std::vector<std::string> SplitForAShell(const std::vector<std::string>& words) {
  std::vector<std::string> lines(1);
  for (const std::string& word : words) {
    const std::string begin = lines.back().empty() ? "" : " ";
    if (!begin.empty() && lines.back().size() + word.size() + 3 > kPlotLineLength) {
      lines.back() += " \\";
      lines.push_back(word);
    } else {
      lines.back() += begin + word;
    }
    while (lines.back().size() + 2 > kPlotLineLength) {
      const std::string rest = lines.back().substr(kPlotLineLength - 2);
      lines.back().replace(kPlotLineLength - 2, std::string::npos, "\\");
      lines.push_back(rest);
    }
  }
  return lines;
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
  return fmt::format("{}", fmt::join(Words(command), " "));
}

void DrawFigures(std::ostream& out, const SweepCommand& command, const Plan& plan, const SweepResult& result) {
  PlotDrawing drawing;
  drawing.AddLines("heading", Title(plan));
  for (const std::string& line : SplitForAShell(Words(command))) {
    drawing.AddLine("command", line);
  }
  drawing.AddLines("soft",
                   fmt::format("Rooms: {}{}. Seed: {}.", command.rooms,
                               plan.Rows() == 1 ? "" : fmt::format(" in each of {} rows", plan.Rows()), command.seed));
  DrawFound(drawing, plan, result);
  DrawErrors(drawing, plan, result);
  DrawErrorsOverDifference(drawing, plan, result);
  out << drawing.Finish(Title(plan), Text(command) + ".\n" + Description(plan, result));
}

void CheckFigures(const std::string& path) {
  if (path != "-" && std::filesystem::path(path).extension() != ".svg") {
    throw std::runtime_error(path + ": expected a name that ends in .svg");
  }
}

}  // namespace orvex::tools
