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

constexpr int kDecimals = 4;  // in the CSV file

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

const std::vector<Column>& FineColumns() {
  constexpr int kFineDecimals = 3;
  static const std::vector<Column> columns = {
      {"rooms", [](const Statistics& s) { return std::to_string(s.rooms); }},
      {"read %", [](const Statistics& s) { return Number(s.foundPercent, 2); }},
      {"bias", [](const Statistics& s) { return Number(s.biasMs, kFineDecimals); }},
      {"RMS", [](const Statistics& s) { return Number(s.rmsMs, kFineDecimals); }},
      {"95 %", [](const Statistics& s) { return Number(s.p95Ms, kFineDecimals); }},
      {"worst", [](const Statistics& s) { return Number(s.worstMs, kFineDecimals); }},
      {"held %", [](const Statistics& s) { return Number(s.heldPercent, 2); }},
      {"half", [](const Statistics& s) { return Number(s.halfWidthMs, kFineDecimals); }},
      {">1 ms %", [](const Statistics& s) { return Number(s.farPercent, 2); }},
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

std::string Measured(const RoomResult& result) {
  return Outcome(result) + ',' + (result.found ? Number(result.errorMs, kDecimals) : "") + ',' +
         Number(result.remainingMs, kDecimals) + ',' + Number(result.decidedMs, kDecimals) + ',' +
         Number(result.endedMs, kDecimals) + ',' + (result.changed ? "yes" : "no");
}

std::string Read(const RoomResult& result) {
  if (!result.found) {
    return "nothing,,,";
  }
  return "read," + Number(result.errorMs, kDecimals) + ',' + Number(result.halfWidthMs, kDecimals) + ',' +
         (result.held ? "yes" : "no");
}

}  // namespace

void WriteTable(std::ostream& out, const Plan& plan, const SweepResult& result) {
  const std::vector<Axis> listed = plan.ListedAxes();
  const std::vector<Column>& columns = result.isFine ? FineColumns() : Columns();
  std::vector<Cells> lines(1);
  for (const Axis axis : listed) {
    lines[0].emplace_back(AxisKinds()[axis].name);
  }
  for (const Column& column : columns) {
    lines[0].emplace_back(column.name);
  }
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    Cells line;
    for (const Axis axis : listed) {
      line.push_back(plan.Text(axis, row));
    }
    const Statistics statistics = Summarise(result.rows[row]);
    for (const Column& column : columns) {
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
  const auto isWritten = [&](const AxisKind& kind) { return result.isFine || !kind.isOfFineReading; };
  out << "row,room";
  for (const AxisKind& kind : AxisKinds()) {
    out << (isWritten(kind) ? std::string(",") + kind.name : "");
  }
  out << (result.isFine ? ",outcome,error-ms,half-ms,held\n"
                        : ",outcome,error-ms,remaining-ms,decided-ms,ended-ms,changed\n");
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    for (std::size_t room = 0; room < result.rows[row].size(); ++room) {
      const RoomValues values = plan.Draw(row, room);
      out << row + 1 << ',' << room + 1;
      for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
        out << (isWritten(AxisKinds()[axis]) ? ',' + DrawnValue(values, static_cast<Axis>(axis)) : "");
      }
      const RoomResult& outcome = result.rows[row][room];
      out << ',' << (result.isFine ? Read(outcome) : Measured(outcome)) << '\n';
    }
  }
}

}  // namespace orvex::tools
