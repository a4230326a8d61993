// Texts with fields in them.
#include "world/runs/text_pattern.h"

#include <algorithm>
#include <cctype>

namespace orvex::runs {

namespace {

bool IsFieldAt(const std::string& pattern, std::size_t at) {
  return at + 2 < pattern.size() && pattern[at] == '{' && pattern[at + 2] == '}' &&
         std::string("dufps").find(pattern[at + 1]) != std::string::npos;
}

bool IsNumber(std::string text, bool maySign, bool mayPoint) {
  if (mayPoint && (text == "inf" || text == "nan" || text == "-nan" || text == "-inf")) {
    return true;
  }
  if (maySign && text.compare(0, 1, "-") == 0) {
    text.erase(0, 1);
  }
  const auto points = std::count(text.begin(), text.end(), '.');
  return !text.empty() && points <= (mayPoint ? 1 : 0) && std::isdigit(text.front()) != 0 &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0 || c == '.'; });
}

bool IsPointer(const std::string& text) {
  return text == "(nil)" ||
         (text.size() > 2 && text.compare(0, 2, "0x") == 0 &&
          std::all_of(text.begin() + 2, text.end(), [](unsigned char c) { return std::isxdigit(c); }));
}

bool Fits(char field, const std::string& text) {
  switch (field) {
    case 'd':
      return IsNumber(text, true, false);
    case 'u':
      return IsNumber(text, false, false);
    case 'f':
      return IsNumber(text, true, true);
    case 'p':
      return IsPointer(text);
    default:
      return true;
  }
}

}  // namespace

TextPattern::TextPattern(const std::string& pattern) : m_Pieces(1) {
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (IsFieldAt(pattern, at)) {
      m_Pieces.push_back({pattern[at + 1], ""});
      at += 2;
    } else {
      m_Pieces.back().literal += pattern[at];
    }
  }
}

std::vector<std::string> TextPattern::Fields(const std::string& text) const {
  std::vector<std::string> fields(m_Pieces.size() - 1);
  return MatchesFrom(0, text, 0, &fields) ? fields : std::vector<std::string>();
}

// A field reaches to an occurrence of what stands behind it; a last field reaches to the end.
bool TextPattern::MatchesFrom(std::size_t piece, const std::string& text, std::size_t at,
                              std::vector<std::string>* fields) const {
  if (piece == m_Pieces.size()) {
    return at == text.size();
  }
  const std::string& literal = m_Pieces[piece].literal;
  if (m_Pieces[piece].field == 0) {
    return text.compare(at, literal.size(), literal) == 0 && MatchesFrom(piece + 1, text, at + literal.size(), fields);
  }
  for (std::size_t end = literal.empty() ? text.size() : text.find(literal, at); end != std::string::npos;
       end = end >= text.size() ? std::string::npos : text.find(literal, end + 1)) {
    const std::string field = text.substr(at, end - at);
    if (Fits(m_Pieces[piece].field, field) && MatchesFrom(piece + 1, text, end + literal.size(), fields)) {
      if (fields != nullptr) {
        (*fields)[piece - 1] = field;
      }
      return true;
    }
  }
  return false;
}

}  // namespace orvex::runs
