// The style sheet has colours as numbers, so that more than browsers can show the file.
#include "sweep/plot_drawing.h"

#include <fmt/format.h>

#include <sstream>
#include <vector>

#include "chart/palette.h"
#include "chart/svg.h"

namespace orvex::tools {
namespace {

static_assert(kPlotLineLength * kCharacterWidth <= kPictureWidth - 2.0 * kPlotMargin);

const char kPlotStyle[] = R"(
svg { display: block; width: 100%; min-width: 860px; max-width: 1160px; height: auto; margin: 0 auto; }
text { font: 14px system-ui, "DejaVu Sans", sans-serif; fill: var(--ink-soft); }
text.heading { font-size: 16px; font-weight: 600; fill: var(--ink); }
text.name { font-weight: 600; fill: var(--ink); }
text.command { font-family: ui-monospace, "DejaVu Sans Mono", monospace; fill: var(--ink); }
text.middle { text-anchor: middle; }
text.end { text-anchor: end; }
.paper { fill: var(--paper); }
.frame { fill: none; stroke: var(--line-strong); }
.grid { fill: none; stroke: var(--line); }
.zero { fill: none; stroke: var(--line-strong); }
.line { stroke-width: 1.8; }
.line .stroke { fill: none; stroke-linejoin: round; }
.line .bar { fill: none; stroke-width: 1.5; }
.line .mark { stroke-width: 1.5; }
.l0 { stroke: var(--ink-17); fill: var(--ink-17); }
.l1 { stroke: var(--ink-19); fill: var(--ink-19); }
.l2 { stroke: var(--ink-175); fill: var(--ink-175); }
.l3 { stroke: var(--ink-18); fill: var(--ink-18); }
.l4 { stroke: var(--ink); fill: var(--ink); }
.bins { fill: var(--ink-17); fill-opacity: .3; stroke: var(--ink-17); stroke-width: 1.2; }
.middle90 { fill: none; stroke: var(--ink-17); stroke-opacity: .5; stroke-width: 7; }
.median { fill: var(--ink-17); }
)";

// As many words to a line as fit.
std::vector<std::string> SplitIntoLines(const std::string& text, std::size_t length) {
  std::vector<std::string> lines(1);
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (!lines.back().empty() && lines.back().size() + 1 + word.size() > length) {
      lines.emplace_back();
    }
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  return lines;
}

}  // namespace

void PlotDrawing::AddText(double x, double y, const std::string& style, const std::string& text) {
  m_Svg += fmt::format("<text class='{}' x='{:.1f}' y='{:.1f}'>{}</text>\n", style, x, y, Escaped(text));
}

void PlotDrawing::AddLine(const std::string& style, const std::string& line) {
  Skip(kPlotTextHeight);
  AddText(kPlotMargin, m_Bottom - 5.0, style, line);
}

void PlotDrawing::AddLines(const std::string& style, const std::string& text) {
  for (const std::string& line : SplitIntoLines(text, kPlotLineLength)) {
    AddLine(style, line);
  }
}

void PlotDrawing::AddPath(const std::string& style, const std::string& path) {
  m_Svg += fmt::format("<path class='{}' d='{}'/>\n", style, path);
}

void PlotDrawing::AddFrame(double x, double y, double width, double height) {
  m_Svg +=
      fmt::format("<rect class='frame' x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}'/>\n", x, y, width, height);
}

std::string PlotDrawing::Finish(const std::string& title, const std::string& description) const {
  return fmt::format(
             "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 {0:.0f} {1:.0f}' width='100%' role='img' "
             "aria-labelledby='title desc'>\n<title id='title'>{2}</title>\n<desc id='desc'>{3}</desc>\n"
             "<style>{4}</style>\n<rect class='paper' width='{0:.0f}' height='{1:.0f}'/>\n",
             kPictureWidth, m_Bottom + kPlotMargin, Escaped(title), Escaped(description), WithColours(kPlotStyle)) +
         m_Svg + "</svg>\n";
}

}  // namespace orvex::tools
