// Texts and marks.
#include "chart/svg.h"

#include <cstddef>

namespace orvex::tools {

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

const char* PathOf(MarkShape shape) {
  static const char* const kPaths[] = {"m0-5v10",
                                       "m-4.5 0a4.5 4.5 0 1 0 9 0a4.5 4.5 0 1 0-9 0",
                                       "m-4-4l8 8m0-8l-8 8",
                                       "m0-6l6 6l-6 6l-6-6z",
                                       "m-4.5-4.5h9v9h-9z",
                                       "m0-5.5l5.5 10h-11z"};
  return kPaths[static_cast<std::size_t>(shape)];
}

}  // namespace orvex::tools
