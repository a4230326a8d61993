// A chart as an SVG element: axes, bands, lines, curves and marks. Most are over buffers and time.
#pragma once

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "chart/svg.h"
#include "chart/ticks.h"
#include "replay/curve.h"

namespace orvex::tools {

// An axis below or above the plot.
struct ChartAxis {
  std::string title;
  double perBuffer = 1.0;  // how much of what the axis counts is a buffer
};

// What a chart is to those who cannot see it.
struct ChartText {
  std::string name;         // of the element, unique in the page
  std::string title;        // a few words
  std::string description;  // what it shows, with the values that matter
};

// `style` is a class name of the page's style sheet, which sets colours and strokes. Each part is drawn above those
// that were added before it.
class Chart {
public:
  // `height` is that of the plot, without axes and labels. A chart of lanes needs no AddDecibelAxis().
  Chart(const ChartText& text, Span buffers, double height);
  void AddDecibelAxis(Span decibels, const std::string& title);

  // A chart of something else than the recording. Where the other functions say buffers, they mean what the lower axis
  // counts divided by its `perBuffer`; the upper axis, when there is one, counts these. Where they say decibels, they
  // mean what the title of that axis says.
  Chart(const ChartText& text, Span buffers, double height, const ChartAxis& below,
        const std::optional<ChartAxis>& above);
  // A line over the whole height of the plot; a label, when there is one, stands right of its upper end.
  void AddUpright(double buffer, const std::string& style, const std::string& label);
  // A bar from one end to the other in the middle of a lane, with a dot. The title is their tooltip.
  void AddInterval(std::size_t lane, Span buffers, double dot, const std::string& style, const std::string& title);

  // The label is written into the band if it fits, and is always the band's tooltip.
  void AddBand(double fromBuffer, double toBuffer, const std::string& style, const std::string& label);
  // A picture that fills a part of the plot; `png` is the file's content in base 64.
  void AddPicture(Span buffers, Span decibels, const std::string& png);
  void AddBox(Span buffers, Span decibels, const std::string& style, const std::string& title);
  // A text within the plot that begins at its left end.
  void AddNote(double decibels, const std::string& style, const std::string& text);
  // A horizontal line from one buffer to another; a label, when there is one, stands in the right margin.
  void AddLevel(double fromBuffer, double toBuffer, double decibels, const std::string& style,
                const std::string& label);
  // Blocks that are far enough apart are marked, too, each kind of curve in its own shape.
  void AddCurve(const std::vector<CurvePoint>& curve, const std::string& style, const std::string& label,
                MarkShape shape = MarkShape::kDot);
  // Marks the two tones of a pair over the whole height of the plot. A pair without a label is drawn faintly.
  void AddPair(double first, double second, const std::string& label);
  // A pair as a line from one place to another.
  struct Place {
    double buffer;
    double decibels;
  };
  void AddPairBetween(Place first, Place second, const std::string& label);
  // In a chart of lanes, a pair is a line that links its two tones.
  struct LanePlace {
    std::size_t lane;
    double buffer;
  };
  void AddLink(LanePlace first, LanePlace second, bool isFaint);

  static constexpr double kLaneHeight = 24.0;
  void AddLaneLabel(std::size_t lane, const std::string& style, const std::string& label);
  // Of several marks in the same column only the first is drawn.
  void AddMarks(std::size_t lane, const std::vector<double>& buffers, MarkShape shape, const std::string& style);

  // A column of colours in the right margin, the lowest level first, and lines at the levels that are named.
  struct ScaleMark {
    double decibels;
    std::string text;
    std::string style;
  };
  void AddScale(const std::vector<std::string>& colours, Span decibels, const std::vector<ScaleMark>& marks);

  // Texts that stand below the plot while a pointer or a finger is on their buffer.
  struct Readout {
    double buffer;
    std::string text;
  };
  void AddReadouts(const std::vector<Readout>& readouts);

  // Returns the SVG element. Nothing can be added afterwards.
  std::string Finish();

private:
  struct MarginLabel {
    double y;
    std::string text;
    std::string style;
    double x;
  };

  double X(double buffer) const;
  double Y(double decibels) const;
  double LaneMiddle(std::size_t lane) const;
  void AddText(double x, double y, const std::string& style, const std::string& text);
  void AddAxes(const ChartAxis& below, const std::optional<ChartAxis>& above);
  void AddPairLabel(double left, double right, double y, const std::string& label);
  void AddMarginLabels();

  std::ostringstream m_Svg;
  std::vector<MarginLabel> m_Labels;
  const ChartText m_Text;
  const Span m_Buffers;
  const double m_Height;
  const bool m_IsOfRecording;
  bool m_HasReadouts = false;
  Span m_Decibels;
};

}  // namespace orvex::tools
