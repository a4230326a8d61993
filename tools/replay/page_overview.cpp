// The verdict stands next to the name, where a narrow window shows it.
#include "replay/page_overview.h"

#include <fmt/format.h>

#include <algorithm>

#include "chart/svg.h"
#include "replay/explanation.h"
#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

std::string FineText(const fine::Reading& reading) {
  return reading.differenceS ? fmt::format("{:+.2f} ms ({:+.2f} to {:+.2f})", *reading.differenceS * 1e3,
                                           reading.intervalS.low * 1e3, reading.intervalS.high * 1e3)
                             : "none";
}

std::string ToneText(const RunRecord& run, Tone tone) {
  const ToneFindings found = FindTone(run, tone);
  const double level = found.strongest ? found.strongest->levels.At(tone) : 0.0;
  return (level > 0.0 ? fmt::format("{:.1f} dBFS, ", LevelDbfs(level)) : "") + InBrief(run, tone);
}

std::string OverviewCell(const std::string& text) {
  return "<td>" + Escaped(text.empty() ? "-" : text) + "</td>";
}

}  // namespace

OverviewLine MakeOverviewLine(const std::string& part, const std::string& file, const RunRecord& run,
                              const std::optional<fine::Reading>& fine) {
  static const char* const kStyles[] = {"good", "warn", "warn", "bad"};
  const auto result = run.FindRunResult();
  const Explanation explanation = Explain(run, fine);
  return {file,
          part,
          explanation.headline,
          kStyles[static_cast<std::size_t>(explanation.outcome)],
          result ? fmt::format("{:+.1f} ms", result->differenceS * 1e3) : "none",
          fine ? FineText(*fine) : "",
          ToneText(run, Tone::k17000Hz),
          ToneText(run, Tone::k19000Hz)};
}

OverviewLine MakeUnreadableLine(const std::string& file, const std::string& problem) {
  return {file, "", "Not read: " + problem, "bad", "", "", "", ""};
}

std::string MakeOverview(const std::vector<OverviewLine>& lines) {
  const bool hasFine =
      std::any_of(lines.begin(), lines.end(), [](const OverviewLine& line) { return !line.fine.empty(); });
  std::string html =
      std::string(
          "<table class='overview'>\n<thead><tr><th scope='col'>recording</th><th scope='col'>verdict</th>"
          "<th scope='col'>difference</th>") +
      (hasFine ? "<th scope='col'>fine reading</th>" : "") +
      "<th scope='col' class='f17'>17 kHz</th><th scope='col' class='f19'>19 kHz</th></tr></thead>\n<tbody>\n";
  for (const OverviewLine& line : lines) {
    const std::string file = Escaped(line.file);
    html += "<tr><th scope='row'>" + (line.part.empty() ? file : "<a href='#" + line.part + "'>" + file + "</a>") +
            "</th><td class='" + line.style + "'>" + Escaped(line.verdict) + "</td>" + OverviewCell(line.difference) +
            (hasFine ? OverviewCell(line.fine) : "") + OverviewCell(line.tone17) + OverviewCell(line.tone19) +
            "</tr>\n";
  }
  return Scrollable("Overview", html + "</tbody>\n</table>\n");
}

}  // namespace orvex::tools
