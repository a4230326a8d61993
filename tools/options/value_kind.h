// What the value of an option may be: how the help calls it, what is accepted, and how a refusal says what was
// expected.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace orvex::tools {

// For completion: finds the values that there are, by the positional arguments before.
using WordFinder = std::function<std::vector<std::string>(const std::vector<std::string>& arguments)>;

enum class PathKind { kNone, kFile, kFolder };

struct ValueKind {
  std::string name;      // in the help: "MS"
  std::string expected;  // for messages: "a number of milliseconds from 0 to 2000"
  std::string range;     // for the help: "0 to 2000"; empty: nothing to say
  std::function<bool(const std::string& text)> accepts = [](const std::string&) { return true; };
  std::vector<std::string> words = {};  // values that have a name
  WordFinder findWords = [](const std::vector<std::string>&) { return std::vector<std::string>(); };
  bool isList = false;               // of such values, with commas between
  PathKind paths = PathKind::kNone;  // values that are paths of things that there are
};

namespace value {

ValueKind Text(const std::string& name);
ValueKind Text(const std::string& name, WordFinder findWords);
ValueKind File(const std::string& name = "FILE");
ValueKind Folder(const std::string& name = "DIR");

// A finite decimal number. `unit` is a symbol in capital letters, such as "MS"; messages spell it out. Both bounds are
// allowed values.
ValueKind Number(const std::string& unit, double low = std::numeric_limits<double>::lowest(),
                 double high = std::numeric_limits<double>::max());
// A number as one writes it, without sign and leading zeros.
ValueKind WholeNumber(const std::string& unit, std::uint64_t low = 0,
                      std::uint64_t high = std::numeric_limits<std::uint64_t>::max());
// Either a value of `kind` or `word`.
ValueKind OrWord(ValueKind kind, const std::string& word);

}  // namespace value
}  // namespace orvex::tools
