// Two lists of the same names.
#include "chart/palette.h"

#include <stdexcept>

namespace orvex::tools {

const char kPalette[] = R"(
:root { color-scheme: light dark;
  --paper: #ffffff; --paper-raised: #f4f6f9; --paper-good: #ecf8ef; --paper-warn: #fff5e2; --paper-bad: #fdeeee;
  --ink: #1b1f24; --ink-soft: #4b535d; --ink-17: #0b5cad; --ink-19: #a83a08; --ink-175: #0b655e; --ink-18: #7e22ce;
  --ink-good: #11652d; --ink-warn: #854800; --ink-bad: #a91616; --line: #dfe3e8; --line-strong: #868f99; }
@media (prefers-color-scheme: dark) { :root {
  --paper: #14181d; --paper-raised: #1e242b; --paper-good: #11291a; --paper-warn: #2e2512; --paper-bad: #341b1d;
  --ink: #e9edf2; --ink-soft: #adb7c3; --ink-17: #74b6ff; --ink-19: #ffa06b; --ink-175: #52d3c2; --ink-18: #d1a1ff;
  --ink-good: #62d58a; --ink-warn: #f3bb50; --ink-bad: #ff9090; --line: #343c46; --line-strong: #77828e; } }
)";

namespace {

constexpr char kIfDark[] = "@media (prefers-color-scheme: dark) {";

std::string Coloured(const std::string& style, const std::string& palette) {
  const std::string use = "var(";
  std::string coloured = style;
  for (std::size_t at = 0; (at = coloured.find(use, at)) != std::string::npos;) {
    const std::size_t end = coloured.find(')', at);
    const std::string name = coloured.substr(at + use.size(), end - at - use.size()) + ": ";
    const std::size_t colour = palette.find(name);
    if (colour == std::string::npos) {
      throw std::logic_error("no colour of the palette: " + name);
    }
    coloured.replace(at, end + 1 - at, palette, colour + name.size(), std::string("#rrggbb").size());
  }
  return coloured;
}

}  // namespace

std::string WithColours(const std::string& style) {
  const std::string palettes = kPalette;  // the light one comes first
  return Coloured(style, palettes) + kIfDark + Coloured(style, palettes.substr(palettes.find(kIfDark))) + "}\n";
}

}  // namespace orvex::tools
