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
constexpr double kLeft = 58.0;
constexpr double kRight = 820.0;
constexpr double kTop = 34.0;
constexpr double kBottomMargin = 30.0;
constexpr double kReadoutHeight = 24.0;
constexpr double kLabelHeight = 17.0;
constexpr double kLabelGap = 10.0;
constexpr double kTitleGap = 30.0;  // leaves room for half of the last tick's number
constexpr double kScaleWidth = 14.0;
constexpr double kPairLabelWidth = 90.0;
constexpr double kBandLabelY = 34.0;   // below a pair's label
constexpr double kMarkSpacing = 12.0;  // blocks at least this far apart are marked, too

}  // namespace

Chart::Chart(const ChartText& text, Span buffers, double height)
    : m_Text(text), m_Buffers(buffers), m_Height(height), m_IsOfRecording(true) {
  AddAxes({"time (s)", detector::kBufferS}, ChartAxis{"buffer"});
}

Chart::Chart(const ChartText& text, Span buffers, double height, const ChartAxis& below,
             const std::optional<ChartAxis>& above)
    : m_Text(text), m_Buffers(buffers), m_Height(height), m_IsOfRecording(false) {
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

void Chart::AddAxes(const ChartAxis& below, const std::optional<ChartAxis>& above) {
  const double bottom = kTop + m_Height;
  if (above) {
    for (const double buffer : Ticks(m_Buffers, std::max(1.0, TickStep(m_Buffers.Length(), 12.0)))) {
      m_Svg << fmt::format("<path class='tick' d='M{:.1f} {:.1f}v-5'/>", X(buffer), kTop);
      AddText(X(buffer), kTop - 12.0, "label middle", fmt::format("{:.0f}", buffer));
    }
    AddText(kRight + kTitleGap, kTop - 12.0, "title", above->title);
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
    AddText(left + width / 2.0, kTop + kBandLabelY, "inside middle", label);
  }
}

void Chart::AddLevel(double fromBuffer, double toBuffer, double decibels, const std::string& style,
                     const std::string& label) {
  if (fromBuffer < m_Buffers.high && toBuffer > m_Buffers.low) {
    m_Svg << fmt::format("<path class='{}' d='M{:.1f} {:.1f}H{:.1f}'/>\n", style, X(fromBuffer), Y(decibels),
                         X(toBuffer));
  }
  if (!label.empty()) {
    m_Labels.push_back({Y(decibels) + 4.0, label, style, kRight + kLabelGap});
  }
}

void Chart::AddPicture(Span buffers, Span decibels, const std::string& png) {
  m_Svg << fmt::format(
      "<image x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}' preserveAspectRatio='none' "
      "href='data:image/png;base64,{}'/>\n",
      X(buffers.low), Y(decibels.high), X(buffers.high) - X(buffers.low), Y(decibels.low) - Y(decibels.high), png);
}

void Chart::AddBox(Span buffers, Span decibels, const std::string& style, const std::string& title) {
  m_Svg << fmt::format(
      "<rect class='box {}' x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}' rx='3'><title>{}</title></rect>\n",
      style, X(buffers.low), Y(decibels.high), X(buffers.high) - X(buffers.low), Y(decibels.low) - Y(decibels.high),
      Escaped(title));
}

void Chart::AddNote(double decibels, const std::string& style, const std::string& text) {
  AddText(kLeft + 8.0, Y(decibels), "note " + style, text);
}

void Chart::AddCurve(const std::vector<CurvePoint>& curve, const std::string& style, const std::string& label,
                     MarkShape shape) {
  std::ostringstream path;
  std::ostringstream marks;
  const bool hasMarks = m_IsOfRecording && (kRight - kLeft) / m_Buffers.Length() >= kMarkSpacing;
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
    if (hasMarks) {
      marks << fmt::format("M{:.1f} {:.1f}{}", x, y, PathOf(shape));
    }
  }
  m_Svg << "<path class='curve " << style << "' data-label='" << Escaped(label) << "' d='" << path.str() << "'/>\n";
  if (hasMarks) {
    m_Svg << "<path class='points " << style << "' d='" << marks.str() << "'/>\n";
  }
}

void Chart::AddPairLabel(double left, double right, double y, const std::string& label) {
  const bool hasRoomRight = right + kPairLabelWidth < kRight;
  AddText(hasRoomRight ? right + 8.0 : left - 8.0, y, hasRoomRight ? "pair" : "pair end", label);
}

void Chart::AddPair(double first, double second, const std::string& label) {
  const double y = kTop + 12.0;
  const double bottom = kTop + m_Height;
  m_Svg << fmt::format("<g class='pair{}' data-first='{:.0f}' data-second='{:.0f}'>", label.empty() ? " further" : "",
                       first, second)
        << fmt::format("<path class='first' d='M{:.1f} {:.1f}V{:.1f}'/>", X(first), kTop, bottom)
        << fmt::format("<path class='second' d='M{:.1f} {:.1f}V{:.1f}'/>", X(second), kTop, bottom)
        << fmt::format("<path class='span' d='M{:.1f} {:.1f}H{:.1f}'/>", X(first), y, X(second));
  AddPairLabel(X(first), X(second), y + 4.0, label);
  m_Svg << "</g>\n";
}

void Chart::AddPairBetween(Place first, Place second, const std::string& label) {
  m_Svg << fmt::format("<g class='pair{}' data-first='{:.0f}' data-second='{:.0f}'>", label.empty() ? " further" : "",
                       first.buffer, second.buffer)
        << fmt::format("<path class='span' d='M{:.1f} {:.1f}L{:.1f} {:.1f}'/>", X(first.buffer), Y(first.decibels),
                       X(second.buffer), Y(second.decibels));
  AddPairLabel(X(first.buffer), X(second.buffer), (Y(first.decibels) + Y(second.decibels)) / 2.0 + 4.0, label);
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

void Chart::AddLink(LanePlace first, LanePlace second, bool isFaint) {
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

void Chart::AddMarks(std::size_t lane, const std::vector<double>& buffers, MarkShape shape, const std::string& style) {
  const double y = LaneMiddle(lane);
  std::set<long> columns;
  m_Svg << "<g class='marks " << style << "'>";
  for (const double buffer : buffers) {
    if (columns.insert(std::lround(X(buffer))).second) {
      const std::string title = BufferText(static_cast<std::int32_t>(buffer));
      m_Svg << fmt::format("<path data-buffer='{:.0f}' d='M{:.1f} {:.1f}{}'><title>{}</title></path>", buffer,
                           X(buffer), y, PathOf(shape), title);
    }
  }
  m_Svg << "</g>\n";
}

void Chart::AddScale(const std::vector<std::string>& colours, Span decibels, const std::vector<ScaleMark>& marks) {
  const double left = kRight + kLabelGap;
  const double step = m_Height / static_cast<double>(colours.size());
  m_Svg << "<g class='scale'>";
  double y = kTop + m_Height;
  for (const std::string& colour : colours) {
    y -= step;
    m_Svg << fmt::format("<rect x='{:.1f}' y='{:.2f}' width='{:.1f}' height='{:.2f}' fill='{}'/>", left, y, kScaleWidth,
                         step + 0.2, colour);
  }
  m_Svg << "</g>\n";
  for (const ScaleMark& mark : marks) {
    const double at =
        kTop + (decibels.high - std::clamp(mark.decibels, decibels.low, decibels.high)) / decibels.Length() * m_Height;
    m_Svg << fmt::format("<path class='scalemark {}' d='M{:.1f} {:.1f}h{:.1f}'/>\n", mark.style, left, at,
                         kScaleWidth + 4.0);
    m_Labels.push_back({at + 4.0, mark.text, mark.style, left + kScaleWidth + 8.0});
  }
}

void Chart::AddReadouts(const std::vector<Readout>& readouts) {
  m_HasReadouts = true;
  const double width = (kRight - kLeft) / m_Buffers.Length();
  for (const Readout& readout : readouts) {
    const double x = X(readout.buffer);
    m_Svg << fmt::format(
        "<g class='readout'><rect x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}'/>"
        "<path d='M{:.1f} {:.1f}v{:.1f}'/>",
        x - width / 2.0, kTop, width, m_Height, x, kTop, m_Height);
    AddText(kLeft, kTop + m_Height + kBottomMargin + 14.0, "label", readout.text);
    m_Svg << "</g>\n";
  }
}

// Moves labels up where they would overlap, and then down what would stand above the plot.
void Chart::AddMarginLabels() {
  std::sort(m_Labels.begin(), m_Labels.end(), [](const MarginLabel& a, const MarginLabel& b) { return a.y < b.y; });
  double lowest = kTop + m_Height - 2.0;
  for (auto label = m_Labels.rbegin(); label != m_Labels.rend(); ++label) {
    lowest = label->y = std::min(label->y, lowest);
    lowest -= kLabelHeight;
  }
  double highest = kTop + kLabelHeight / 2.0 + 4.0;
  for (MarginLabel& label : m_Labels) {
    highest = label.y = std::max(label.y, highest);
    highest += kLabelHeight;
  }
  for (const MarginLabel& label : m_Labels) {
    AddText(label.x, label.y, "label " + label.style, label.text);
  }
}

std::string Chart::Finish() {
  AddMarginLabels();
  const double height = kTop + m_Height + kBottomMargin + (m_HasReadouts ? kReadoutHeight : 0.0);
  return fmt::format(
             "<svg class='chart' id='{0}' viewBox='0 0 {1:.0f} {2:.0f}' role='img' aria-labelledby='{0}-title "
             "{0}-desc' data-from='{3:g}' data-to='{4:g}'>\n<title id='{0}-title'>{5}</title>\n"
             "<desc id='{0}-desc'>{6}</desc>\n",
             m_Text.name, kPictureWidth, height, m_Buffers.low, m_Buffers.high, Escaped(m_Text.title),
             Escaped(m_Text.description)) +
         m_Svg.str() + "</svg>\n";
}

}  // namespace orvex::tools
