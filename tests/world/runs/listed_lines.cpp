// Looks lines up among the texts of src/, which the build reads out of the sources.
#include "world/runs/listed_lines.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "world/runs/text_pattern.h"
#include "world/runs/threads.h"

namespace orvex::runs {

namespace {

constexpr const char* kPatterns[] = {
#include "world/runs/log_patterns.inc"
};

// By the first characters, which differ enough to leave few patterns to try.
constexpr std::size_t kKeyLength = 5;

std::multimap<std::string, TextPattern> PatternsByKey() {
  std::multimap<std::string, TextPattern> byKey;
  for (const char* const text : kPatterns) {
    TextPattern pattern(text);
    const std::string key = pattern.Beginning().substr(0, kKeyLength);
    byKey.emplace(key, std::move(pattern));
  }
  return byKey;
}

bool IsLogText(const std::string& text) {
  static const std::multimap<std::string, TextPattern> kByKey = PatternsByKey();
  // A pattern's beginning may be shorter than the key of a line that it matches.
  for (std::size_t length = std::min(kKeyLength, text.size()); length >= 3; --length) {
    const auto [first, last] = kByKey.equal_range(text.substr(0, length));
    if (std::any_of(first, last, [&](const auto& keyed) { return keyed.second.Matches(text); })) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string Objection(const world::Entry& entry) {
  if (entry.text.compare(0, 2, "* ") == 0) {
    return "";
  }
  std::string_view threads;
  if (entry.text.compare(0, 2, "> ") == 0) {
    threads = ThreadsThatCall(entry.text.substr(2, entry.text.find('(') - 2));
    if (threads.empty()) {
      return "no such call is made: " + entry.text;
    }
  } else {
    threads = ThreadsThatLogIn(entry.function);
    if (!IsLogText(entry.text)) {
      return "no such line is logged: " + entry.text;
    }
  }
  return threads.find(entry.thread.front()) != std::string_view::npos
             ? ""
             : "not on the thread " + entry.thread + ": " + entry.text;
}

}  // namespace orvex::runs
