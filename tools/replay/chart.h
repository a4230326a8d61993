// A chart over time as an SVG element: axes, bands, lines, curves and marks.
#pragma once

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

// Class names choose colours and strokes; the page's style sheet has them. Everything that is added later lies above.
class Chart {
public:
  // `height`: of the plot. A chart of lanes has no vertical axis: `decibels` is not used then.
  Chart(const std::string& name, Span buffers, double height);
  void AddDecibelAxis(Span decibels, const std::string& title);

  // The label is shown as far as the band is wide enough, and under the pointer.
  void AddBand(double fromBuffer, double toBuffer, const std::string& style, const std::string& label);
  // A horizontal line from one buffer to another; a label, when there is one, stands in the right margin.
  void AddLevel(double fromBuffer, double toBuffer, double decibels, const std::string& style,
                const std::string& label);
  // With dots, if blocks are far enough apart. `label` is for the cursor.
  void AddCurve(const std::vector<CurvePoint>& curve, const std::string& style, const std::string& label);
  // Two tones that were paired, across the chart. A pair without a label is drawn faintly.
  void AddPair(double first, double second, const std::string& label);
  // The same between the lanes of both tones.
  struct Place {
    std::size_t lane;
    double buffer;
  };
  void AddLink(Place first, Place second, bool isFaint);

  static constexpr double kLaneHeight = 22.0;
  void AddLaneLabel(std::size_t lane, const std::string& style, const std::string& label);
  // Marks at the same column of a lane are drawn once.
  enum class Shape { kTick, kDot, kCross, kDiamond };
  void AddMarks(std::size_t lane, const std::vector<double>& buffers, Shape shape, const std::string& style);

  // The element. Nothing can be added afterwards.
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
  void AddTimeAxes();
  void AddMarginLabels();

  std::ostringstream m_Svg;
  std::vector<MarginLabel> m_Labels;
  const std::string m_Name;
  const Span m_Buffers;
  const double m_Height;
  Span m_Decibels;
};

}  // namespace orvex::tools
