// A small picture of few colours as a PNG file in base 64, as pages hold it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex::tools {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

// "#0b5cad"
std::string HexOf(const Colour& colour);

// `pixels`: an index into `colours`, of which there are at most 256, for each pixel, row by row from the top.
std::string MakePng(std::size_t width, const std::vector<std::uint8_t>& pixels, const std::vector<Colour>& colours);

}  // namespace orvex::tools
