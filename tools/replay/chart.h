// A chart as an SVG element: axes, bands, lines, curves and marks. Most are over buffers and time.
#pragma once

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "replay/curve.h"

namespace orvex::tools {

// Both ends of an axis.
struct Span {
  double low = 0.0;
  double high = 1.0;

  double Length() const { return high - low; }
};

// An axis below or above the plot.
struct Axis {
  std::string title;
  double perBuffer = 1.0;  // how much of what the axis counts is a buffer
};

// `style` is a class name of the page's style sheet, which sets colours and strokes. Each part is drawn above those
// that were added before it.
class Chart {
public:
  // `height` is that of the plot, without axes and labels. A chart of lanes needs no AddDecibelAxis().
  Chart(const std::string& name, Span buffers, double height);
  void AddDecibelAxis(Span decibels, const std::string& title);

  // A chart of something else than the recording, told to those who cannot see it by `description`. Where the other
  // functions say buffers, they mean what the lower axis counts divided by its `perBuffer`; the upper axis, when there
  // is one, counts these. Where they say decibels, they mean what the title of that axis says.
  Chart(const std::string& name, Span buffers, double height, const Axis& below, const std::optional<Axis>& above,
        std::string description);
  // A line over the whole height of the plot; a label, when there is one, stands right of its upper end.
  void AddUpright(double buffer, const std::string& style, const std::string& label);
  // A bar from one end to the other in the middle of a lane, with a dot. The title is their tooltip.
  void AddInterval(std::size_t lane, Span buffers, double dot, const std::string& style, const std::string& title);

  // The label is written into the band if it fits, and is always the band's tooltip.
  void AddBand(double fromBuffer, double toBuffer, const std::string& style, const std::string& label);
  // A horizontal line from one buffer to another; a label, when there is one, stands in the right margin.
  void AddLevel(double fromBuffer, double toBuffer, double decibels, const std::string& style,
                const std::string& label);
  // Blocks that are far enough apart are drawn as dots, too. The cursor's readout names the curve by `label`.
  void AddCurve(const std::vector<CurvePoint>& curve, const std::string& style, const std::string& label);
  // Marks the two tones of a pair over the whole height of the plot. A pair without a label is drawn faintly.
  void AddPair(double first, double second, const std::string& label);
  // In a chart of lanes, a pair is a line that links its two tones.
  struct Place {
    std::size_t lane;
    double buffer;
  };
  void AddLink(Place first, Place second, bool isFaint);

  static constexpr double kLaneHeight = 22.0;
  void AddLaneLabel(std::size_t lane, const std::string& style, const std::string& label);
  // Of several marks in the same column only the first is drawn.
  enum class Shape { kTick, kDot, kCross, kDiamond };
  void AddMarks(std::size_t lane, const std::vector<double>& buffers, Shape shape, const std::string& style);

  // Returns the SVG element. Nothing can be added afterwards.
  std::string Finish();

private:
  struct MarginLabel {
    double y;
    std::string text;
    std::string style;
  };

  double X(double buffer) const;
  double Y(double decibels) const;
  double LaneMiddle(std::size_t lane) const;
  void AddText(double x, double y, const std::string& style, const std::string& text);
  void AddAxes(const Axis& below, const std::optional<Axis>& above);
  void AddMarginLabels();

  std::ostringstream m_Svg;
  std::vector<MarginLabel> m_Labels;
  const std::string m_Name;
  const Span m_Buffers;
  const double m_Height;
  const bool m_IsOfRecording;
  const std::string m_Description;
  Span m_Decibels;
};

}  // namespace orvex::tools
