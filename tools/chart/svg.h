// The smallest things that pictures as SVG consist of.
#pragma once

#include <string>

namespace orvex::tools {

// In the units of the view box. Each picture is scaled to the width of what it stands in.
constexpr double kPictureWidth = 1020.0;
constexpr double kCharacterWidth = 8.5;  // of a wide font at 14 units

// Escapes a text for HTML and SVG, between tags as well as within quotes.
std::string Escaped(const std::string& text);

enum class MarkShape { kTick, kDot, kCross, kDiamond, kSquare, kTriangle };
// The path of a mark around the place that it begins with.
const char* PathOf(MarkShape shape);

}  // namespace orvex::tools
