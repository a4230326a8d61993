// A name is taken when it is one part of exactly one value's path, or else a piece of one.
#include "tv/value_names.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "options/errors.h"
#include "options/suggestion.h"
#include "virtual/television_values.h"

namespace orvex::tools {
namespace {

// Shorter ones would be hit by mistake.
constexpr std::size_t kShortestPiece = 4;

bool HasPart(const std::string& path, const std::string& part) {
  const std::filesystem::path parts(path);
  return std::find(parts.begin(), parts.end(), std::filesystem::path(part)) != parts.end();
}

bool HasPiece(const std::string& path, const std::string& piece) {
  return piece.size() >= kShortestPiece && path.find(piece) != std::string::npos;
}

std::vector<std::string> ValuesMeant(const std::string& name) {
  for (const auto has : {HasPart, HasPiece}) {
    std::vector<std::string> meant;
    for (const std::string& value : ValueNames()) {
      if (has(value, name)) {
        meant.push_back(value);
      }
    }
    if (!meant.empty()) {
      return meant;
    }
  }
  return {};
}

// What may have been meant by `name`: values, parts of their paths, and ends of these about as long as `name`.
std::vector<std::string> WordsLike(const std::string& name) {
  std::vector<std::string> words = ValueNames();
  for (const std::string& value : ValueNames()) {
    for (const std::filesystem::path& element : std::filesystem::path(value)) {
      const std::string part = element.string();
      words.push_back(part);
      for (std::size_t length = std::max(kShortestPiece, name.size() - 1); length <= name.size() + 1; ++length) {
        if (length < part.size()) {
          words.push_back(part.substr(part.size() - length));
        }
      }
    }
  }
  return words;
}

// More are not chosen from a list.
constexpr std::int64_t kMostOffered = 10;

std::string Lines(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += "\n  " + name;
  }
  return text;
}

}  // namespace

std::string FullValueName(const std::string& name) {
  if (virtual_tv::DescribeTelevisionValue(name)) {
    return name;
  }
  const std::vector<std::string> meant = ValuesMeant(name);
  if (meant.size() == 1) {
    return meant.front();
  }
  if (meant.empty()) {
    throw UsageError("\"" + name + "\" is no value of a television" + DidYouMean(name, WordsLike(name)) +
                     "\nKnown are any settings/db/... and:" + Lines(ValueNames()));
  }
  throw UsageError("\"" + name + "\" may be one of:" + Lines(meant));
}

std::vector<std::string> ValueNames() {
  std::vector<std::string> names;
  for (const virtual_tv::TelevisionValue& value : virtual_tv::TelevisionValues()) {
    names.push_back(value.name);
  }
  return names;
}

std::vector<std::string> ValuesOf(const std::string& name) {
  std::vector<std::string> texts;
  const auto value = virtual_tv::DescribeTelevisionValue(FullValueName(name));
  if (value && !value->isText && value->maximum - value->minimum < kMostOffered) {
    for (std::int64_t number = value->minimum; number <= value->maximum; ++number) {
      texts.push_back(std::to_string(number));
    }
  }
  return texts;
}

}  // namespace orvex::tools
