// The texts that a world's journal gains during an action, and functions that pick some of them.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "world/world.h"

namespace orvex::test {

using Texts = std::vector<std::string>;

// Replaces every "0x…" by "<address>".
inline std::string WithoutAddresses(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "0x") != 0) {
      result += text[i];
      continue;
    }
    result += "<address>";
    ++i;
    while (i + 1 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) != 0) {
      ++i;
    }
  }
  return result;
}

// The texts that the journal gains during `action`, without addresses. The journal is cleared before.
template <class Action>
Texts During(world::World& world, Action action) {
  world.journal.Clear();
  action();
  Texts texts;
  for (const std::string& text : world.journal.Texts()) {
    texts.push_back(WithoutAddresses(text));
  }
  return texts;
}

inline Texts Concat(const std::vector<Texts>& parts) {
  Texts all;
  for (const Texts& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

// From the first line that reads `first` to the end; nothing when there is no such line.
inline Texts From(const Texts& texts, const std::string& first) {
  return {std::find(texts.begin(), texts.end(), first), texts.end()};
}

// The first `count` lines; all when there are fewer.
inline Texts FirstOf(const Texts& texts, std::size_t count) {
  return {texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(std::min(count, texts.size()))};
}

// The last `count` lines; all when there are fewer.
inline Texts LastOf(const Texts& texts, std::size_t count) {
  return {texts.end() - static_cast<std::ptrdiff_t>(std::min(count, texts.size())), texts.end()};
}

// The functions that logged a line of this text, in order. Only by them can empty lines be told apart.
inline Texts FunctionsThatLogged(const world::Journal& journal, const std::string& text) {
  Texts functions;
  for (const world::Entry& entry : journal.Entries()) {
    if (entry.text == text) {
      functions.push_back(entry.function);
    }
  }
  return functions;
}

}  // namespace orvex::test
