#include "replay/png_picture.h"

#include <fmt/format.h>
#include <png.h>

#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>
#include <stdexcept>

namespace orvex::tools {
namespace {

// Groups of three bytes become four characters; "=" fills the last one.
std::string InBase64(const std::vector<std::uint8_t>& bytes) {
  namespace iterators = boost::archive::iterators;
  using Characters =
      iterators::base64_from_binary<iterators::transform_width<std::vector<std::uint8_t>::const_iterator, 6, 8>>;
  std::string text(Characters(bytes.begin()), Characters(bytes.end()));
  return text.append((3 - bytes.size() % 3) % 3, '=');
}

}  // namespace

std::string HexOf(const Colour& colour) {
  return fmt::format("#{:02x}{:02x}{:02x}", colour.red, colour.green, colour.blue);
}

std::string MakePng(std::size_t width, const std::vector<std::uint8_t>& pixels, const std::vector<Colour>& colours) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(pixels.size() / width);
  image.format = PNG_FORMAT_RGB_COLORMAP;
  image.colormap_entries = static_cast<png_uint_32>(colours.size());
  std::vector<std::uint8_t> map;
  for (const Colour& colour : colours) {
    map.insert(map.end(), {colour.red, colour.green, colour.blue});
  }
  std::vector<std::uint8_t> file(PNG_IMAGE_PNG_SIZE_MAX(image));
  png_alloc_size_t size = file.size();
  if (png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), 0, map.data()) == 0) {
    throw std::runtime_error(std::string("a picture cannot be made: ") + image.message);
  }
  file.resize(size);
  return InBase64(file);
}

}  // namespace orvex::tools
