// The page that the figures of a sweep are drawn on, from the top down.
#pragma once

#include <cstddef>
#include <string>

namespace orvex::tools {

// In the units of the view box, whose width is kPictureWidth.
constexpr double kPlotMargin = 14.0;
constexpr double kPlotTextHeight = 20.0;
constexpr std::size_t kPlotLineLength = 116;  // characters between the margins

class PlotDrawing {
public:
  // Moves what follows down.
  void Skip(double height) { m_Bottom += height; }
  double Bottom() const { return m_Bottom; }

  void AddText(double x, double y, const std::string& style, const std::string& text);
  // At the left margin, below what there is. AddLines() gives a long text several lines.
  void AddLine(const std::string& style, const std::string& line);
  void AddLines(const std::string& style, const std::string& text);
  void AddPath(const std::string& style, const std::string& path);
  void AddFrame(double x, double y, double width, double height);
  void AddSvg(const std::string& svg) { m_Svg += svg; }

  // The file: an SVG that fills the width of what it stands in, with texts for those who cannot see it.
  std::string Finish(const std::string& title, const std::string& description) const;

private:
  std::string m_Svg;
  double m_Bottom = kPlotMargin;
};

}  // namespace orvex::tools
