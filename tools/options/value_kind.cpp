// Numbers are read independently of the language of the person.
#include "options/value_kind.h"

#include <map>
#include <utility>

#include "options/value_text.h"

namespace orvex::tools {
namespace {

// " of milliseconds"; empty for a symbol that says no more than "a number" does.
std::string OfUnit(const std::string& unit) {
  static const std::map<std::string, std::string> kUnits = {
      {"DB", "decibels"},     {"DBFS", "decibels of full scale"}, {"HZ", "hertz"}, {"M", "metres"},
      {"MS", "milliseconds"}, {"PPM", "parts per million"},       {"S", "seconds"}};
  const auto found = kUnits.find(unit);
  return found == kUnits.end() ? "" : " of " + found->second;
}

ValueKind Path(const std::string& name, const std::string& expected, PathKind paths) {
  ValueKind kind{name, expected, "", [](const std::string& text) { return !text.empty(); }};
  kind.paths = paths;
  return kind;
}

}  // namespace

namespace value {

ValueKind Text(const std::string& name) {
  return {name, name, ""};
}

ValueKind Text(const std::string& name, WordFinder findWords) {
  ValueKind kind = Text(name);
  kind.findWords = std::move(findWords);
  return kind;
}

ValueKind File(const std::string& name) {
  return Path(name, "a file", PathKind::kFile);
}

ValueKind Folder(const std::string& name) {
  return Path(name, "a folder", PathKind::kFolder);
}

ValueKind Number(const std::string& unit, double low, double high) {
  const bool isLimited = low > std::numeric_limits<double>::lowest() || high < std::numeric_limits<double>::max();
  const std::string range = isLimited ? TextOf(low) + " to " + TextOf(high) : "";
  return {unit, "a number" + OfUnit(unit) + (isLimited ? " from " + range : ""), range, [=](const std::string& text) {
            double value = 0.0;
            return ReadValue(text, value) && value >= low && value <= high;
          }};
}

ValueKind WholeNumber(const std::string& unit, std::uint64_t low, std::uint64_t high) {
  const bool isLimited = low > 0 || high < std::numeric_limits<std::uint64_t>::max();
  const std::string range = TextOf(low) + " to " + TextOf(high);
  return {unit, "a whole number" + OfUnit(unit) + " from " + range, isLimited ? range : "",
          [=](const std::string& text) {
            std::uint64_t value = 0;
            return ReadValue(text, value) && TextOf(value) == text && value >= low && value <= high;
          }};
}

ValueKind OrWord(ValueKind kind, const std::string& word) {
  kind.expected += " or \"" + word + "\"";
  kind.words.push_back(word);
  kind.accepts = [accepts = std::move(kind.accepts), word](const std::string& text) {
    return text == word || accepts(text);
  };
  return kind;
}

}  // namespace value
}  // namespace orvex::tools
