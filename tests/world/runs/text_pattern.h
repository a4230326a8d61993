// Texts with fields in them: what a line reads when its numbers are not known beforehand.
#pragma once

#include <string>
#include <vector>

namespace orvex::runs {

// {d} a decimal integer, {u} one without a sign, {f} a decimal fraction, inf or nan, {p} a pointer, {s} any text. All
// other characters, braces included, stand for themselves.
class TextPattern {
public:
  explicit TextPattern(const std::string& pattern);

  bool Matches(const std::string& text) const { return MatchesFrom(0, text, 0); }
  // What the fields hold; empty when the text does not match.
  std::vector<std::string> Fields(const std::string& text) const;
  // What every matching text begins with.
  const std::string& Beginning() const { return m_Pieces.front().literal; }

private:
  struct Piece {
    char field;           // before it: 'd', 'u', 'f', 'p', 's', or 0 for none
    std::string literal;  // then this
  };

  bool MatchesFrom(std::size_t piece, const std::string& text, std::size_t at,
                   std::vector<std::string>* fields = nullptr) const;

  std::vector<Piece> m_Pieces;
};

}  // namespace orvex::runs
