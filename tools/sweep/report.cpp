// The table and the CSV file share their columns: a name and a function of the statistics each.
#include "sweep/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace orvex::tools {
namespace {

using Cells = std::vector<std::string>;

std::string Number(double value, int decimals) {
  return fmt::format("{:.{}f}", value, decimals);
}

struct Column {
  const char* name;
  std::function<std::string(const Statistics&)> cell;
};

const std::vector<Column>& Columns() {
  static const std::vector<Column> columns = {
      {"rooms", [](const Statistics& s) { return std::to_string(s.rooms); }},
      {"found %", [](const Statistics& s) { return Number(s.foundPercent, 2); }},
      {"false %", [](const Statistics& s) { return Number(s.falsePercent, 2); }},
      {">17.5 %", [](const Statistics& s) { return Number(s.offGridPercent, 2); }},
      {"worse %", [](const Statistics& s) { return Number(s.worsePercent, 2); }},
      {"changed %", [](const Statistics& s) { return Number(s.changedPercent, 2); }},
      {"abnormal %", [](const Statistics& s) { return Number(s.abnormalPercent, 2); }},
      {"bias", [](const Statistics& s) { return Number(s.biasMs, 2); }},
      {"RMS", [](const Statistics& s) { return Number(s.rmsMs, 2); }},
      {"95 %", [](const Statistics& s) { return Number(s.p95Ms, 1); }},
      {"worst", [](const Statistics& s) { return Number(s.worstMs, 1); }},
      {"decided s", [](const Statistics& s) { return Number(s.decidedMs / 1000.0, 3); }},
      {"ended s", [](const Statistics& s) { return Number(s.endedMs / 1000.0, 3); }},
  };
  return columns;
}

void WriteAligned(std::ostream& out, const std::vector<Cells>& lines) {
  std::vector<std::size_t> widths(lines.front().size(), 0);
  for (const Cells& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      widths[i] = std::max(widths[i], line[i].size());
    }
  }
  for (const Cells& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      out << (i == 0 ? "" : "  ") << std::string(widths[i] - line[i].size(), ' ') << line[i];
    }
    out << '\n';
  }
}

// Of delay and level of the reflections there are several: the speaker's, then the optical output's.
std::string DrawnValue(const RoomValues& values, Axis axis) {
  constexpr int kDecimals = 4;
  const auto& names = AxisKinds()[axis].names;
  if (!names.empty()) {
    return names[static_cast<std::size_t>(values[axis])];
  }
  if (axis != axis::kReflectionMs && axis != axis::kReflectionDb) {
    return Number(values[axis], kDecimals);
  }
  std::string all;
  for (const auto* reflections : {&values.tvReflections, &values.opticalReflections}) {
    for (const sim::Reflection& reflection : *reflections) {
      all += (all.empty() ? "" : " ") +
             Number(axis == axis::kReflectionMs ? reflection.delayMs : reflection.gainDb, kDecimals);
    }
  }
  return all;
}

std::string Outcome(const RoomResult& result) {
  if (result.found) {
    return "found";
  }
  return result.abnormal ? "abnormal" : "nothing";
}

}  // namespace

void WriteTable(std::ostream& out, const Plan& plan, const SweepResult& result) {
  const std::vector<Axis> listed = plan.ListedAxes();
  std::vector<Cells> lines(1);
  for (const Axis axis : listed) {
    lines[0].emplace_back(AxisKinds()[axis].name);
  }
  for (const Column& column : Columns()) {
    lines[0].emplace_back(column.name);
  }
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    Cells line;
    for (const Axis axis : listed) {
      line.push_back(plan.Text(axis, row));
    }
    const Statistics statistics = Summarise(result.rows[row]);
    for (const Column& column : Columns()) {
      line.push_back(column.cell(statistics));
    }
    lines.push_back(std::move(line));
  }
  WriteAligned(out, lines);
  if (!result.IsComplete()) {
    out << "incomplete: interrupted after " << result.done << " of " << result.planned << " rooms\n";
  }
}

void WriteCsv(std::ostream& out, const Plan& plan, const SweepResult& result) {
  constexpr int kDecimals = 4;
  out << "row,room";
  for (const AxisKind& kind : AxisKinds()) {
    out << ',' << kind.name;
  }
  out << ",outcome,error-ms,remaining-ms,decided-ms,ended-ms,changed\n";
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    for (std::size_t room = 0; room < result.rows[row].size(); ++room) {
      const RoomResult& outcome = result.rows[row][room];
      const RoomValues values = plan.Draw(row, room);
      out << row + 1 << ',' << room + 1;
      for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
        out << ',' << DrawnValue(values, static_cast<Axis>(axis));
      }
      out << ',' << Outcome(outcome) << ',' << (outcome.found ? Number(outcome.errorMs, kDecimals) : "") << ','
          << Number(outcome.remainingMs, kDecimals) << ',' << Number(outcome.decidedMs, kDecimals) << ','
          << Number(outcome.endedMs, kDecimals) << ',' << (outcome.changed ? "yes" : "no") << '\n';
    }
  }
}

}  // namespace orvex::tools
