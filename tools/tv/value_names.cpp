// A name is taken when it is one part of exactly one value's path.
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

bool HasPart(const std::string& path, const std::string& part) {
  const std::filesystem::path parts(path);
  return std::find(parts.begin(), parts.end(), std::filesystem::path(part)) != parts.end();
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
  const std::vector<std::string> all = ValueNames();
  std::vector<std::string> parts = all;
  std::vector<std::string> meant;
  for (const std::string& value : all) {
    for (const std::filesystem::path& part : std::filesystem::path(value)) {
      parts.push_back(part.string());
    }
    if (HasPart(value, name)) {
      meant.push_back(value);
    }
  }
  if (meant.size() == 1) {
    return meant.front();
  }
  if (meant.empty()) {
    throw UsageError("\"" + name + "\" is no value of a television" + DidYouMean(name, parts) +
                     "\nKnown are any settings/db/... and:" + Lines(all));
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
