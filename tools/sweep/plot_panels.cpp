// A grid of panels is filled row by row, with as many columns as the rows' names leave.
#include "sweep/plot_panels.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "chart/svg.h"
#include "chart/ticks.h"

namespace orvex::tools {
namespace {

constexpr double kPanelHeight = 96.0;
constexpr double kPanelLeft = 40.0;   // of the plot, within its column
constexpr double kPanelGap = 18.0;    // between a plot and the next column
constexpr double kPanelHead = 50.0;   // two lines above the plot
constexpr double kPanelFoot = 26.0;   // ticks
constexpr std::size_t kClasses = 12;  // of the true difference

constexpr std::size_t kBins = 2 * kShownErrorMs + 1;
// Whole milliseconds; the first is -kShownErrorMs.
using Bins = std::array<std::size_t, kBins>;

struct Scales {
  Span x;
  Span y;
};

// The plot of one row.
class Panel {
public:
  Panel(double left, double top, double width, const Scales& scales)
      : m_Left(left), m_Top(top), m_Width(width), m_Scales(scales) {}

  double X(double value) const { return m_Left + (value - m_Scales.x.low) / m_Scales.x.Length() * m_Width; }
  double Y(double value) const {
    const double shown = std::clamp(value, m_Scales.y.low, m_Scales.y.high);
    return m_Top + (m_Scales.y.high - shown) / m_Scales.y.Length() * kPanelHeight;
  }

  void DrawAxes(PlotDrawing& drawing) const {
    const double bottom = m_Top + kPanelHeight;
    const double stepX = TickStep(m_Scales.x.Length(), 7.0);
    for (const double tick : Ticks(m_Scales.x, stepX)) {
      drawing.AddPath("grid", fmt::format("M{:.1f} {:.1f}V{:.1f}", X(tick), m_Top, bottom));
      drawing.AddText(X(tick), bottom + 17.0, "middle", fmt::format("{:.{}f}", tick, DecimalsOf(stepX)));
    }
    const double stepY = TickStep(m_Scales.y.Length(), 4.0);
    for (const double tick : Ticks(m_Scales.y, stepY)) {
      drawing.AddPath("grid", fmt::format("M{:.1f} {:.1f}H{:.1f}", m_Left, Y(tick), m_Left + m_Width));
      drawing.AddText(m_Left - 6.0, Y(tick) + 5.0, "end", fmt::format("{:.{}f}", tick, DecimalsOf(stepY)));
    }
    drawing.AddPath("zero", fmt::format("M{:.1f} {:.1f}H{:.1f}", m_Left, Y(0.0), m_Left + m_Width));
    drawing.AddFrame(m_Left, m_Top, m_Width, kPanelHeight);
  }

  void DrawNote(PlotDrawing& drawing, const std::string& text) const {
    drawing.AddText(m_Left + m_Width - 6.0, m_Top + 17.0, "end", text);
  }

private:
  double m_Left;
  double m_Top;
  double m_Width;
  Scales m_Scales;
};

std::string PanelName(const Plan& plan, std::size_t row) {
  const std::string name = plan.Name(plan.ListedAxes(), row);
  return name.empty() ? "all rooms" : name;
}

// Three columns, or fewer when there are fewer rows or the longest name is wider than a column.
std::size_t CountColumns(const Plan& plan) {
  std::size_t longest = 0;
  for (std::size_t row = 0; row < plan.Rows(); ++row) {
    longest = std::max(longest, PanelName(plan, row).size());
  }
  const double most = static_cast<double>(std::min<std::size_t>(plan.Rows(), 3));
  const double width = std::max(kCharacterWidth * static_cast<double>(longest), 1.0);
  return static_cast<std::size_t>(std::clamp((kPictureWidth - 2.0 * kPlotMargin) / width, 1.0, most));
}

using DrawContent = std::function<void(const Panel& panel, std::size_t row)>;
using Subtitle = std::function<std::string(std::size_t row)>;

void DrawPanels(PlotDrawing& drawing, const Plan& plan, const Scales& scales, const Subtitle& subtitle,
                const DrawContent& drawContent) {
  const std::size_t columns = CountColumns(plan);
  const double columnWidth = (kPictureWidth - 2.0 * kPlotMargin) / static_cast<double>(columns);
  const double lineHeight = kPanelHead + kPanelHeight + kPanelFoot;
  for (std::size_t row = 0; row < plan.Rows(); ++row) {
    const double left = kPlotMargin + columnWidth * static_cast<double>(row % columns);
    const double top = drawing.Bottom() + kPanelHead;
    drawing.AddSvg("<g class='panel'>\n");
    drawing.AddText(left, top - 29.0, "name", PanelName(plan, row));
    drawing.AddText(left, top - 12.0, "soft", subtitle(row));
    const Panel panel(left + kPanelLeft, top, columnWidth - kPanelLeft - kPanelGap, scales);
    panel.DrawAxes(drawing);
    drawContent(panel, row);
    drawing.AddSvg("</g>\n");
    if (row % columns == columns - 1 || row == plan.Rows() - 1) {
      drawing.Skip(lineHeight);
    }
  }
}

bool IsShown(double errorMs) {
  return std::abs(std::lround(errorMs)) <= kShownErrorMs;
}

Bins CountErrors(const std::vector<RoomResult>& results) {
  Bins bins{};
  for (const RoomResult& result : results) {
    if (result.found && IsShown(result.errorMs)) {
      ++bins[static_cast<std::size_t>(std::lround(result.errorMs) + kShownErrorMs)];
    }
  }
  return bins;
}

double PercentOf(std::size_t count, std::size_t rooms) {
  return 100.0 * static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(rooms, 1));
}

// Beside those that the panel shows.
std::string CountBeyond(const std::vector<RoomResult>& results) {
  const auto beyond = std::count_if(results.begin(), results.end(),
                                    [](const RoomResult& result) { return result.found && !IsShown(result.errorMs); });
  return beyond == 0 ? "" : fmt::format("{} beyond", beyond);
}

// A step for each millisecond, on the line at 0 where there is no room.
void DrawBins(PlotDrawing& drawing, const Panel& panel, const std::vector<RoomResult>& results) {
  const Bins bins = CountErrors(results);
  std::string path = fmt::format("M{:.1f} {:.1f}", panel.X(-kShownErrorMs - 0.5), panel.Y(0.0));
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    path += fmt::format("V{:.1f}H{:.1f}", panel.Y(PercentOf(bins[bin], results.size())),
                        panel.X(static_cast<double>(bin) - kShownErrorMs + 0.5));
  }
  drawing.AddPath("bins", path + fmt::format("V{:.1f}z", panel.Y(0.0)));
}

// The error that `share` of the sorted errors do not exceed.
double Quantile(const std::vector<double>& errors, double share) {
  return errors[static_cast<std::size_t>(std::lround(share * static_cast<double>(errors.size() - 1)))];
}

void DrawClasses(PlotDrawing& drawing, const Panel& panel, const std::vector<RoomResult>& results, Span differences) {
  std::array<std::vector<double>, kClasses> classes;
  for (const RoomResult& result : results) {
    if (result.found) {
      const double place = (result.beforeMs - differences.low) / differences.Length() * kClasses;
      classes[std::min(static_cast<std::size_t>(place), kClasses - 1)].push_back(result.errorMs);
    }
  }
  for (std::size_t n = 0; n < kClasses; ++n) {
    std::vector<double>& errors = classes[n];
    if (errors.empty()) {
      continue;
    }
    std::sort(errors.begin(), errors.end());
    const double x = panel.X(differences.low + (static_cast<double>(n) + 0.5) * differences.Length() / kClasses);
    drawing.AddPath("middle90", fmt::format("M{:.1f} {:.1f}V{:.1f}", x, panel.Y(Quantile(errors, 0.05)),
                                            panel.Y(Quantile(errors, 0.95))));
    drawing.AddPath("median",
                    fmt::format("M{:.1f} {:.1f}{}", x, panel.Y(Quantile(errors, 0.5)), PathOf(MarkShape::kDot)));
  }
}

Span TrueDifferences(const SweepResult& result) {
  Span span{0.0, 0.0};
  bool isFirst = true;
  for (const auto& row : result.rows) {
    for (const RoomResult& room : row) {
      span.low = isFirst ? room.beforeMs : std::min(span.low, room.beforeMs);
      span.high = isFirst ? room.beforeMs : std::max(span.high, room.beforeMs);
      isFirst = false;
    }
  }
  return span;
}

}  // namespace

void DrawErrors(PlotDrawing& drawing, const Plan& plan, const SweepResult& result) {
  double highest = 0.0;
  for (const auto& row : result.rows) {
    const Bins bins = CountErrors(row);
    highest = std::max(highest, PercentOf(*std::max_element(bins.begin(), bins.end()), row.size()));
  }
  const double end = kShownErrorMs + 0.5;
  drawing.Skip(18.0);
  drawing.AddLines("heading", "Error");
  drawing.AddLines("soft", "Reported minus true difference in ms, and % of the row's rooms in each whole millisecond.");
  const auto subtitle = [&](std::size_t row) {
    const Statistics statistics = Summarise(result.rows[row]);
    return statistics.foundPercent > 0.0
               ? fmt::format("bias {:.1f} ms, RMS {:.1f} ms", statistics.biasMs, statistics.rmsMs)
               : std::string("nothing found");
  };
  DrawPanels(drawing, plan, {{-end, end}, {0.0, highest > 0.0 ? 1.05 * highest : 1.0}}, subtitle,
             [&](const Panel& panel, std::size_t row) {
               DrawBins(drawing, panel, result.rows[row]);
               panel.DrawNote(drawing, CountBeyond(result.rows[row]));
             });
}

void DrawErrorsOverDifference(PlotDrawing& drawing, const Plan& plan, const SweepResult& result) {
  const Span differences = TrueDifferences(result);
  if (differences.Length() <= 0.0) {
    return;
  }
  drawing.Skip(18.0);
  drawing.AddLines("heading", "Error over true difference");
  drawing.AddLines("soft", fmt::format("Both in ms; {} classes of the true difference. Dot: median of the errors. Bar: "
                                       "the middle 90 % of them. What is beyond ±{} ms is drawn at the edge.",
                                       kClasses, kShownErrorMs));
  const auto subtitle = [&](std::size_t row) {
    const Statistics statistics = Summarise(result.rows[row]);
    return statistics.foundPercent > 0.0
               ? fmt::format("95 % within ±{:.1f} ms, worst {:.1f} ms", statistics.p95Ms, statistics.worstMs)
               : std::string("nothing found");
  };
  DrawPanels(drawing, plan, {differences, {-kShownErrorMs, kShownErrorMs}}, subtitle,
             [&](const Panel& panel, std::size_t row) { DrawClasses(drawing, panel, result.rows[row], differences); });
}

}  // namespace orvex::tools
