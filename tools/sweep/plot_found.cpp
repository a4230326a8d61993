// Lines that cannot be told apart by their dashes and marks are never in one chart: more lines make more charts.
#include "sweep/plot_found.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chart/svg.h"
#include "chart/ticks.h"

namespace orvex::tools {
namespace {

constexpr double kFoundLeft = 58.0;
constexpr double kFoundRight = kPictureWidth - kPlotMargin;
constexpr double kFoundHeight = 240.0;
constexpr Span kShownPercent{-4.0, 104.0};  // leaves room for marks at 0 and 100
constexpr double kFoundPadding = 36.0;      // left of the first value, and right of the last one
constexpr double kBesideLine = 8.0;         // lines are so much apart, so that none hides another's bars
constexpr double kSampleWidth = 40.0;       // of a line, in the legend

struct LineStyle {
  const char* dashes;
  MarkShape mark;
};
constexpr LineStyle kLineStyles[] = {{"none", MarkShape::kDot},
                                     {"6 3", MarkShape::kDiamond},
                                     {"2 3", MarkShape::kSquare},
                                     {"12 5", MarkShape::kTriangle},
                                     {"9 3 2 3", MarkShape::kCross}};
constexpr std::size_t kLinesOfAChart = std::size(kLineStyles);

struct FoundPoint {
  double x;
  std::size_t row;
};

struct FoundLine {
  std::string name;
  std::vector<FoundPoint> points;  // from left to right
};

bool HasNumbers(Axis axis) {
  return AxisKinds()[axis].names.empty();
}

class FoundFigure {
public:
  FoundFigure(const Plan& plan, const SweepResult& result) : m_Plan(plan), m_Result(result) {
    ChooseAxis();
    for (std::size_t row = 0; row < result.rows.size(); ++row) {
      AddPoint(row);
    }
    for (FoundLine& line : m_Lines) {
      std::stable_sort(line.points.begin(), line.points.end(),
                       [](const FoundPoint& a, const FoundPoint& b) { return a.x < b.x; });
    }
    const auto [low, high] = std::minmax_element(m_Ticks.begin(), m_Ticks.end());
    m_Values = {low->first, high->first};
  }

  void Draw(PlotDrawing& drawing) const {
    for (std::size_t first = 0; first < m_Lines.size(); first += kLinesOfAChart) {
      DrawChart(drawing, first, std::min(first + kLinesOfAChart, m_Lines.size()));
    }
  }

private:
  using Tick = std::pair<double, std::string>;

  std::size_t CountValues(Axis axis) const {
    std::vector<std::string> texts;
    for (std::size_t row = 0; row < m_Plan.Rows(); ++row) {
      texts.push_back(m_Plan.Text(axis, row));
    }
    std::sort(texts.begin(), texts.end());
    return static_cast<std::size_t>(std::unique(texts.begin(), texts.end()) - texts.begin());
  }

  void ChooseAxis() {
    m_Others = m_Plan.ListedAxes();
    const auto rank = [&](Axis axis) { return std::make_pair(HasNumbers(axis), CountValues(axis)); };
    const auto best =
        std::max_element(m_Others.begin(), m_Others.end(), [&](Axis a, Axis b) { return rank(a) < rank(b); });
    if (best != m_Others.end()) {
      m_Axis = *best;
      m_Others.erase(best);
    }
  }

  bool IsLine() const { return m_Axis && HasNumbers(*m_Axis); }

  // Names stand in the order in which they come.
  double PlaceOf(std::size_t row) {
    const std::string text = m_Axis ? m_Plan.Text(*m_Axis, row) : "all rooms";
    const auto known =
        std::find_if(m_Ticks.begin(), m_Ticks.end(), [&](const Tick& tick) { return tick.second == text; });
    if (known != m_Ticks.end()) {
      return known->first;
    }
    m_Ticks.emplace_back(IsLine() ? std::strtod(text.c_str(), nullptr) : static_cast<double>(m_Ticks.size()), text);
    return m_Ticks.back().first;
  }

  void AddPoint(std::size_t row) {
    const std::string name = m_Plan.Name(m_Others, row);
    auto line = std::find_if(m_Lines.begin(), m_Lines.end(), [&](const FoundLine& one) { return one.name == name; });
    if (line == m_Lines.end()) {
      line = m_Lines.insert(line, {name, {}});
    }
    line->points.push_back({PlaceOf(row), row});
  }

  double X(double value) const {
    const double share = m_Values.Length() > 0.0 ? (value - m_Values.low) / m_Values.Length() : 0.5;
    return kFoundLeft + kFoundPadding + share * (kFoundRight - kFoundLeft - 2.0 * kFoundPadding);
  }

  static double Y(double top, double percent) {
    return top + (kShownPercent.high - percent) / kShownPercent.Length() * kFoundHeight;
  }

  void DrawChart(PlotDrawing& drawing, std::size_t first, std::size_t end) const {
    drawing.Skip(18.0);
    drawing.AddSvg("<g class='chart'>\n");
    drawing.AddLines("heading", m_Lines.size() <= kLinesOfAChart
                                    ? "Found"
                                    : fmt::format("Found, lines {} to {} of {}", first + 1, end, m_Lines.size()));
    drawing.AddLines("soft", "Share of the rooms with a result. Bars: 95 % confidence (Wilson)." +
                                 std::string(end - first > 1 ? " Points of one value stand side by side." : ""));
    if (!m_Others.empty()) {
      DrawLegend(drawing, first, end);
    }
    drawing.Skip(12.0);
    const double top = drawing.Bottom();
    DrawAxes(drawing, top);
    for (std::size_t line = first; line < end; ++line) {
      const double beside = (static_cast<double>(line) - static_cast<double>(first + end - 1) / 2.0) * kBesideLine;
      DrawLine(drawing, top, m_Lines[line], line - first, beside);
    }
    drawing.AddSvg("</g>\n");
    drawing.Skip(kFoundHeight + 44.0);
  }

  void DrawLegend(PlotDrawing& drawing, std::size_t first, std::size_t end) const {
    double x = kPlotMargin;
    drawing.Skip(kPlotTextHeight);
    for (std::size_t line = first; line < end; ++line) {
      const double width = kSampleWidth + 26.0 + kCharacterWidth * static_cast<double>(m_Lines[line].name.size());
      if (x > kPlotMargin && x + width > kFoundRight) {
        x = kPlotMargin;
        drawing.Skip(kPlotTextHeight);
      }
      const double y = drawing.Bottom() - 10.0;
      const LineStyle& style = kLineStyles[line - first];
      drawing.AddSvg(fmt::format("<g class='line l{}'>", line - first));
      if (IsLine()) {
        AddStroke(drawing, style, fmt::format("M{:.1f} {:.1f}h{:.1f}", x, y, kSampleWidth));
      }
      drawing.AddPath("mark", fmt::format("M{:.1f} {:.1f}{}", x + kSampleWidth / 2.0, y, PathOf(style.mark)));
      drawing.AddSvg("</g>\n");
      drawing.AddText(x + kSampleWidth + 6.0, drawing.Bottom() - 5.0, "soft", m_Lines[line].name);
      x += width;
    }
  }

  static void AddStroke(PlotDrawing& drawing, const LineStyle& style, const std::string& path) {
    drawing.AddSvg(fmt::format("<path class='stroke' stroke-dasharray='{}' d='{}'/>", style.dashes, path));
  }

  void DrawAxes(PlotDrawing& drawing, double top) const {
    const double bottom = top + kFoundHeight;
    for (const double tick : Ticks({0.0, 100.0}, 20.0)) {
      drawing.AddPath("grid", fmt::format("M{:.1f} {:.1f}H{:.1f}", kFoundLeft, Y(top, tick), kFoundRight));
      drawing.AddText(kFoundLeft - 7.0, Y(top, tick) + 5.0, "end", fmt::format("{:.0f}", tick));
    }
    std::vector<Tick> ticks = m_Ticks;
    std::sort(ticks.begin(), ticks.end());
    double free = 0.0;  // labels do not overlap
    for (const auto& [value, text] : ticks) {
      const double half = kCharacterWidth * static_cast<double>(text.size()) / 2.0;
      drawing.AddPath("grid", fmt::format("M{:.1f} {:.1f}V{:.1f}", X(value), top, bottom));
      if (X(value) - half >= free) {
        drawing.AddText(X(value), bottom + 18.0, "middle", text);
        free = X(value) + half + 4.0;
      }
    }
    drawing.AddFrame(kFoundLeft, top, kFoundRight - kFoundLeft, kFoundHeight);
    drawing.AddSvg(fmt::format("<text class='middle' transform='translate(18 {:.1f}) rotate(-90)'>% of rooms</text>\n",
                               top + kFoundHeight / 2.0));
    if (m_Axis) {
      const AxisKind& kind = AxisKinds()[*m_Axis];
      drawing.AddText((kFoundLeft + kFoundRight) / 2.0, bottom + 38.0, "middle",
                      std::string(kind.name) + ": " + kind.text);
    }
  }

  void DrawLine(PlotDrawing& drawing, double top, const FoundLine& line, std::size_t number, double beside) const {
    const LineStyle& style = kLineStyles[number];
    std::string stroke;
    std::string points;
    for (const FoundPoint& point : line.points) {
      const Statistics statistics = Summarise(m_Result.rows[point.row]);
      const ShareInterval interval = WilsonInterval(statistics.foundPercent, statistics.rooms);
      const double x = X(point.x) + beside;
      const double y = Y(top, statistics.foundPercent);
      stroke += fmt::format("{}{:.1f} {:.1f}", stroke.empty() ? 'M' : 'L', x, y);
      const std::string name = m_Plan.Name(m_Plan.ListedAxes(), point.row);
      points += fmt::format(
          "<g><title>{}{:.2f} % found, {:.2f} to {:.2f} %</title><path class='bar' d='M{:.1f} {:.1f}V{:.1f}"
          "M{:.1f} {:.1f}h8M{:.1f} {:.1f}h8'/><path class='mark' d='M{:.1f} {:.1f}{}'/></g>\n",
          name.empty() ? "" : Escaped(name) + ": ", statistics.foundPercent, interval.lowPercent, interval.highPercent,
          x, Y(top, interval.lowPercent), Y(top, interval.highPercent), x - 4.0, Y(top, interval.lowPercent), x - 4.0,
          Y(top, interval.highPercent), x, y, PathOf(style.mark));
    }
    drawing.AddSvg(fmt::format("<g class='line l{} found' data-label='{}'>", number, Escaped(line.name)));
    if (IsLine()) {
      AddStroke(drawing, style, stroke);
    }
    drawing.AddSvg(points + "</g>\n");
  }

  const Plan& m_Plan;
  const SweepResult& m_Result;
  std::optional<Axis> m_Axis;  // that the lines are over
  std::vector<Axis> m_Others;
  std::vector<Tick> m_Ticks;
  std::vector<FoundLine> m_Lines;
  Span m_Values;
};

}  // namespace

void DrawFound(PlotDrawing& drawing, const Plan& plan, const SweepResult& result) {
  FoundFigure(plan, result).Draw(drawing);
}

}  // namespace orvex::tools
