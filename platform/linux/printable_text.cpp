// Decodes UTF-8 character by character.
#include "linux/printable_text.h"

#include <array>
#include <boost/locale/utf.hpp>
#include <cstdio>
#include <functional>

namespace orvex::port {
namespace {

using Utf8 = boost::locale::utf::utf_traits<char>;
using boost::locale::utf::code_point;

// One character, or one byte that belongs to none.
struct Piece {
  std::string_view bytes;
  code_point character = 0;
  bool isValid = false;

  bool IsControl() const {
    constexpr code_point kBlank = 0x20, kDelete = 0x7F, kLastControl = 0x9F;
    return character < kBlank || (character >= kDelete && character <= kLastControl);
  }
  bool IsPrintable() const { return isValid && !IsControl(); }
};

void ForEachPiece(std::string_view text, const std::function<void(const Piece& piece)>& take) {
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end;) {
    const char* next = at;
    const code_point character = Utf8::decode(next, end);
    const bool isValid = boost::locale::utf::is_valid_codepoint(character);
    next = isValid ? next : at + 1;
    take({std::string_view(at, static_cast<std::size_t>(next - at)), character, isValid});
    at = next;
  }
}

std::string Escape(const Piece& piece) {
  switch (piece.isValid ? piece.character : 0) {
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    case '\r':
      return "\\r";
    default:
      break;
  }
  std::array<char, 8> text{};
  if (piece.isValid && piece.bytes.size() > 1) {
    std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(piece.character));
  } else {
    std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned char>(piece.bytes[0]));
  }
  return text.data();
}

}  // namespace

bool IsPrintable(std::string_view text) {
  bool isPrintable = true;
  ForEachPiece(text, [&](const Piece& piece) { isPrintable = isPrintable && piece.IsPrintable(); });
  return isPrintable;
}

std::string Printable(std::string_view text) {
  std::string printable;
  ForEachPiece(
      text, [&](const Piece& piece) { printable += piece.IsPrintable() ? std::string(piece.bytes) : Escape(piece); });
  return printable;
}

std::string ValidUtf8(std::string_view text) {
  std::string valid;
  ForEachPiece(text, [&](const Piece& piece) { valid += piece.isValid ? piece.bytes : "\xEF\xBF\xBD"; });
  return valid;
}

}  // namespace orvex::port
