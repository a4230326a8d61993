// Appends each part to the SVG text when it is added. Only the labels in the right margin wait for Finish(), which
// moves them apart.
#include "replay/chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "replay/text.h"

namespace orvex::tools {
namespace {

// In the units of the SVG's view box. The page scales the chart to its own width.
constexpr double kWidth = 1200.0;
constexpr double kLeft = 58.0;
constexpr double kRight = 1020.0;
constexpr double kTop = 34.0;
constexpr double kBottomMargin = 36.0;
constexpr double kLabelHeight = 14.0;
constexpr double kLabelGap = 10.0;
constexpr double kTitleGap = 30.0;  // leaves room for half of the last tick's number
constexpr double kPairLabelWidth = 90.0;
constexpr double kCharacterWidth = 7.0;
constexpr double kDotSpacing = 7.0;  // blocks at least this far apart are drawn as dots, too

// The smallest step of 1, 2 or 5 times a power of ten of which at most `count` fit into `length`.
double TickStep(double length, double count) {
  const double rough = length / count;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= rough) {
      return factor * power;
    }
  }
  return 10.0 * power;
}

// The number of decimal places with which the labels of adjacent ticks differ.
int DecimalsOf(double step) {
  if (step < 0.1) {
    return 2;
  }
  return step < 1.0 ? 1 : 0;
}

std::vector<double> Ticks(Span span, double step) {
  std::vector<double> ticks;
  const auto first = static_cast<long>(std::ceil(span.low / step));
  const auto last = static_cast<long>(std::floor(span.high / step));
  for (long tick = first; tick <= last; ++tick) {
    ticks.push_back(static_cast<double>(tick) * step);
  }
  return ticks;
}

}  // namespace

Chart::Chart(const std::string& name, Span buffers, double height)
    : m_Name(name), m_Buffers(buffers), m_Height(height), m_IsOfRecording(true) {
  AddAxes({"time (s)", detector::kBufferS}, Axis{"buffer"});
}

Chart::Chart(const std::string& name, Span buffers, double height, const Axis& below, const std::optional<Axis>& above,
             std::string description)
    : m_Name(name),
      m_Buffers(buffers),
      m_Height(height),
      m_IsOfRecording(false),
      m_Description(std::move(description)) {
  AddAxes(below, above);
}

double Chart::X(double buffer) const {
  return kLeft +
         (std::clamp(buffer, m_Buffers.low, m_Buffers.high) - m_Buffers.low) / m_Buffers.Length() * (kRight - kLeft);
}

double Chart::Y(double decibels) const {
  return kTop +
         (m_Decibels.high - std::clamp(decibels, m_Decibels.low, m_Decibels.high)) / m_Decibels.Length() * m_Height;
}

void Chart::AddText(double x, double y, const std::string& style, const std::string& text) {
  m_Svg << fmt::format("<text x='{:.1f}' y='{:.1f}' class='{}'>{}</text>\n", x, y, style, Escaped(text));
}

void Chart::AddAxes(const Axis& below, const std::optional<Axis>& above) {
  const double bottom = kTop + m_Height;
  if (above) {
    for (const double buffer : Ticks(m_Buffers, std::max(1.0, TickStep(m_Buffers.Length(), 12.0)))) {
      m_Svg << fmt::format("<path class='tick' d='M{:.1f} {:.1f}v-5'/>", X(buffer), kTop);
      AddText(X(buffer), kTop - 8.0, "label middle", fmt::format("{:.0f}", buffer));
    }
    AddText(kRight + kTitleGap, kTop - 8.0, "title", above->title);
  }
  const double step = TickStep(m_Buffers.Length() * below.perBuffer, 12.0);
  for (const double tick : Ticks({m_Buffers.low * below.perBuffer, m_Buffers.high * below.perBuffer}, step)) {
    m_Svg << fmt::format("<path class='grid' d='M{:.1f} {:.1f}V{:.1f}'/>", X(tick / below.perBuffer), kTop, bottom);
    AddText(X(tick / below.perBuffer), bottom + 19.0, "label middle", fmt::format("{:.{}f}", tick, DecimalsOf(step)));
  }
  AddText(kRight + kTitleGap, bottom + 19.0, "title", below.title);
  m_Svg << fmt::format("<rect class='frame' x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}'/>\n", kLeft, kTop,
                       kRight - kLeft, m_Height);
}

void Chart::AddDecibelAxis(Span decibels, const std::string& title) {
  m_Decibels = decibels;
  for (const double tick : Ticks(decibels, TickStep(decibels.Length(), m_Height / 32.0))) {
    m_Svg << fmt::format("<path class='grid' d='M{:.1f} {:.1f}H{:.1f}'/>", kLeft, Y(tick), kRight);
    AddText(kLeft - 7.0, Y(tick) + 4.0, "label end", fmt::format("{:.0f}", tick));
  }
  const double middle = kTop + m_Height / 2.0;
  m_Svg << fmt::format("<text class='title middle' transform='translate(15 {:.1f}) rotate(-90)'>{}</text>\n", middle,
                       Escaped(title));
}

void Chart::AddBand(double fromBuffer, double toBuffer, const std::string& style, const std::string& label) {
  const double left = X(fromBuffer);
  const double width = X(toBuffer) - left;
  if (width <= 0.0) {
    return;
  }
  m_Svg << fmt::format(
      "<rect class='{}' x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}'><title>{}</title></rect>\n", style, left,
      kTop, width, m_Height, Escaped(label));
  if (width > kCharacterWidth * static_cast<double>(label.size())) {
    AddText(left + width / 2.0, kTop + 16.0, "title middle", label);
  }
}

void Chart::AddLevel(double fromBuffer, double toBuffer, double decibels, const std::string& style,
                     const std::string& label) {
  if (fromBuffer < m_Buffers.high && toBuffer > m_Buffers.low) {
    m_Svg << fmt::format("<path class='{}' d='M{:.1f} {:.1f}H{:.1f}'/>\n", style, X(fromBuffer), Y(decibels),
                         X(toBuffer));
  }
  if (!label.empty()) {
    m_Labels.push_back({Y(decibels) + 4.0, label, style});
  }
}

void Chart::AddCurve(const std::vector<CurvePoint>& curve, const std::string& style, const std::string& label) {
  std::ostringstream path;
  std::ostringstream dots;
  const bool hasDots = m_IsOfRecording && (kRight - kLeft) / m_Buffers.Length() >= kDotSpacing;
  bool isOpen = false;
  for (const CurvePoint& point : Thin(curve, static_cast<std::size_t>(kRight - kLeft))) {
    if (std::isnan(point.decibels)) {
      isOpen = false;
      continue;
    }
    const double x = X(point.buffer);
    const double y = Y(point.decibels);
    path << fmt::format("{}{:.1f} {:.1f}", isOpen ? 'L' : 'M', x, y);
    isOpen = true;
    if (hasDots) {
      dots << fmt::format("<circle cx='{:.1f}' cy='{:.1f}' r='2.4'/>", x, y);
    }
  }
  m_Svg << "<path class='curve " << style << "' data-label='" << Escaped(label) << "' d='" << path.str() << "'/>\n";
  if (hasDots) {
    m_Svg << "<g class='dots " << style << "'>" << dots.str() << "</g>\n";
  }
}

void Chart::AddPair(double first, double second, const std::string& label) {
  const double y = kTop + 12.0;
  const double bottom = kTop + m_Height;
  const bool hasRoomRight = X(second) + kPairLabelWidth < kRight;
  m_Svg << fmt::format("<g class='pair{}' data-first='{:.0f}' data-second='{:.0f}'>", label.empty() ? " further" : "",
                       first, second)
        << fmt::format("<path class='first' d='M{:.1f} {:.1f}V{:.1f}'/>", X(first), kTop, bottom)
        << fmt::format("<path class='second' d='M{:.1f} {:.1f}V{:.1f}'/>", X(second), kTop, bottom)
        << fmt::format("<path class='span' d='M{:.1f} {:.1f}H{:.1f}'/>", X(first), y, X(second));
  AddText(hasRoomRight ? X(second) + 6.0 : X(first) - 6.0, y + 4.0, hasRoomRight ? "pair" : "pair end", label);
  m_Svg << "</g>\n";
}

void Chart::AddUpright(double buffer, const std::string& style, const std::string& label) {
  m_Svg << fmt::format("<path class='upright {}' d='M{:.1f} {:.1f}v{:.1f}'/>", style, X(buffer), kTop, m_Height);
  if (!label.empty()) {
    AddText(X(buffer) + 6.0, kTop + 16.0, "upright", label);
  }
}

void Chart::AddInterval(std::size_t lane, Span buffers, double dot, const std::string& style,
                        const std::string& title) {
  const double y = LaneMiddle(lane);
  m_Svg << fmt::format(
      "<g class='interval {}'><title>{}</title><path class='bar' d='M{:.1f} {:.1f}H{:.1f}'/>"
      "<circle cx='{:.1f}' cy='{:.1f}' r='4.5'/></g>\n",
      style, Escaped(title), X(buffers.low), y, X(buffers.high), X(dot), y);
}

double Chart::LaneMiddle(std::size_t lane) const {
  return kTop + (static_cast<double>(lane) + 0.5) * kLaneHeight;
}

void Chart::AddLink(Place first, Place second, bool isFaint) {
  m_Svg << fmt::format("<g class='pair{}' data-first='{:.0f}' data-second='{:.0f}'>", isFaint ? " further" : "",
                       first.buffer, second.buffer)
        << fmt::format("<path class='span' d='M{:.1f} {:.1f}L{:.1f} {:.1f}'/></g>\n", X(first.buffer),
                       LaneMiddle(first.lane), X(second.buffer), LaneMiddle(second.lane));
}

void Chart::AddLaneLabel(std::size_t lane, const std::string& style, const std::string& label) {
  const double y = kTop + static_cast<double>(lane) * kLaneHeight;
  m_Svg << fmt::format("<path class='grid' d='M{:.1f} {:.1f}H{:.1f}'/>", kLeft, y, kRight);
  AddText(kRight + kLabelGap, y + kLaneHeight / 2.0 + 4.0, "label " + style, label);
}

void Chart::AddMarks(std::size_t lane, const std::vector<double>& buffers, Shape shape, const std::string& style) {
  static const char* const kShapes[] = {"m0-5v10", "m-5 0a5 5 0 1 0 10 0a5 5 0 1 0-10 0", "m-4-4l8 8m0-8l-8 8",
                                        "m0-6l6 6l-6 6l-6-6z"};
  const double y = LaneMiddle(lane);
  std::set<long> columns;
  m_Svg << "<g class='marks " << style << "'>";
  for (const double buffer : buffers) {
    if (columns.insert(std::lround(X(buffer))).second) {
      const std::string title = BufferText(static_cast<std::int32_t>(buffer));
      m_Svg << fmt::format("<path data-buffer='{:.0f}' d='M{:.1f} {:.1f}{}'><title>{}</title></path>", buffer,
                           X(buffer), y, kShapes[static_cast<std::size_t>(shape)], title);
    }
  }
  m_Svg << "</g>\n";
}

// Moves labels up where they would overlap.
void Chart::AddMarginLabels() {
  std::sort(m_Labels.begin(), m_Labels.end(), [](const MarginLabel& a, const MarginLabel& b) { return a.y < b.y; });
  double lowest = kTop + m_Height + 4.0;
  for (auto label = m_Labels.rbegin(); label != m_Labels.rend(); ++label) {
    lowest = label->y = std::min(label->y, lowest);
    lowest -= kLabelHeight;
  }
  for (const MarginLabel& label : m_Labels) {
    AddText(kRight + kLabelGap, label.y, "label " + label.style, label.text);
  }
}

std::string Chart::Finish() {
  AddMarginLabels();
  const double height = kTop + m_Height + kBottomMargin;
  const std::string description = m_IsOfRecording ? "" : " aria-label='" + Escaped(m_Description) + "'";
  return fmt::format(
             "<svg class='chart' id='{}' viewBox='0 0 {:.0f} {:.0f}' role='img'{} data-from='{:g}' data-to='{:g}' "
             "data-low='{:g}' data-high='{:g}' data-left='{:g}' data-right='{:g}' data-top='{:g}' "
             "data-bottom='{:g}'>\n",
             m_Name, kWidth, height, description, m_Buffers.low, m_Buffers.high, m_Decibels.low, m_Decibels.high, kLeft,
             kRight, kTop, kTop + m_Height) +
         m_Svg.str() + "</svg>\n";
}

}  // namespace orvex::tools
