// Small helpers to read numbers out of a journal's texts.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace orvex::runs {

inline bool StartsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

// The decimal number behind `beginning`; none when the text begins otherwise.
inline std::optional<std::int64_t> NumberAfter(const std::string& text, const std::string& beginning) {
  if (!StartsWith(text, beginning)) {
    return std::nullopt;
  }
  return std::strtoll(text.c_str() + beginning.size(), nullptr, 10);
}

// What the call at the start of `text` answered: the number behind its last " = "; none when this is another text.
inline std::optional<std::int64_t> AnswerOf(const std::string& text, const std::string& call) {
  return StartsWith(text, "> " + call + "(") ? NumberAfter(text.substr(text.rfind(" = ")), " = ") : std::nullopt;
}

}  // namespace orvex::runs
