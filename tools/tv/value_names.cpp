// A name is taken when it is one part of exactly one value's path.
#include "tv/value_names.h"

#include <algorithm>
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
  std::vector<std::string> all;
  std::vector<std::string> parts;
  std::vector<std::string> meant;
  for (const virtual_tv::TelevisionValue& value : virtual_tv::TelevisionValues()) {
    all.push_back(value.name);
    for (const std::filesystem::path& part : std::filesystem::path(value.name)) {
      parts.push_back(part.string());
    }
    if (HasPart(value.name, name)) {
      meant.push_back(value.name);
    }
  }
  if (meant.size() == 1) {
    return meant.front();
  }
  if (meant.empty()) {
    parts.insert(parts.end(), all.begin(), all.end());
    throw UsageError("\"" + name + "\" is no value of a television" + DidYouMean(name, parts) +
                     "\nKnown are any settings/db/... and:" + Lines(all));
  }
  throw UsageError("\"" + name + "\" may be one of:" + Lines(meant));
}

}  // namespace orvex::tools
