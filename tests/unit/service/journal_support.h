// Looks at parts of what a world saw.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "world/world.h"

namespace orvex::service_tests {

using Texts = std::vector<std::string>;

// The ends of what a number of the platform can be.
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

// What the journal shows of something that happens; what was there before is forgotten.
template <class Action>
Texts During(world::World& world, Action action) {
  world.journal.Clear();
  action();
  return world.journal.Texts();
}

// From the first line that reads `first` to the next one that reads `last`, both included.
inline Texts FromTo(const Texts& texts, const std::string& first, const std::string& last) {
  const auto begin = std::find(texts.begin(), texts.end(), first);
  const auto end = std::find(begin, texts.end(), last);
  if (end == texts.end()) {
    throw std::out_of_range("not in the journal: from " + first + " to " + last);
  }
  return {begin, end + 1};
}

// `texts`, then `more`.
inline Texts Then(Texts texts, const Texts& more) {
  texts.insert(texts.end(), more.begin(), more.end());
  return texts;
}

// Functions that logged a line of this text, in order: the empty lines differ in nothing else.
inline Texts FunctionsThatLogged(const world::Journal& journal, const std::string& text) {
  Texts functions;
  for (const world::Entry& entry : journal.Entries()) {
    if (entry.text == text) {
      functions.push_back(entry.function);
    }
  }
  return functions;
}

}  // namespace orvex::service_tests
