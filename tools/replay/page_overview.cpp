#include "replay/page_overview.h"

#include <fmt/format.h>

#include "replay/explanation.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr char kNone[] = "none";

std::string OverviewRow(const std::string& file, const std::string& cells) {
  return "<tr><th scope='row'>" + file + "</th>" + cells + "</tr>\n";
}

std::string OverviewCell(const std::string& text) {
  return "<td>" + Escaped(text) + "</td>";
}

std::string FineText(const fine::Reading& reading) {
  return reading.differenceS ? fmt::format("{:+.2f} ms ({:+.2f} to {:+.2f})", *reading.differenceS * 1e3,
                                           reading.intervalS.low * 1e3, reading.intervalS.high * 1e3)
                             : kNone;
}

}  // namespace

std::string MakeOverviewLine(const std::string& part, const std::string& file, const RunRecord& run,
                             const std::optional<fine::Reading>& fine) {
  static const char* const kStyles[] = {"good", "warn", "warn", "bad"};
  const auto result = run.FindRunResult();
  const Explanation explanation = Explain(run);
  return OverviewRow("<a href='#" + part + "'>" + Escaped(file) + "</a>",
                     OverviewCell(result ? fmt::format("{:+.1f} ms", result->differenceS * 1e3) : kNone) +
                         OverviewCell(fine ? FineText(*fine) : "not asked for") +
                         OverviewCell(InBrief(run, Tone::k17000Hz)) + OverviewCell(InBrief(run, Tone::k19000Hz)) +
                         fmt::format("<td class='{}'>{}</td>", kStyles[static_cast<std::size_t>(explanation.outcome)],
                                     Escaped(explanation.headline)));
}

std::string MakeOverviewLine(const std::string& file, const std::string& problem) {
  return OverviewRow(Escaped(file), OverviewCell("-") + OverviewCell("-") + OverviewCell("-") + OverviewCell("-") +
                                        "<td class='bad'>Not read: " + Escaped(problem) + "</td>");
}

std::string MakeOverview(const std::string& lines) {
  return Scrollable("Overview",
                    "<table class='overview'>\n<thead><tr><th scope='col'>recording</th><th scope='col'>difference</th>"
                    "<th scope='col'>fine reading</th><th scope='col' class='f17'>17 kHz</th><th scope='col' "
                    "class='f19'>19 kHz</th><th scope='col'>verdict</th></tr></thead>\n<tbody>\n" +
                        lines + "</tbody>\n</table>\n");
}

}  // namespace orvex::tools
