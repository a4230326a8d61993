// Takes the lines of a service.log apart and compares them with patterns.
#include "integration/log_lines.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <functional>
#include <map>
#include <regex>

#include "world/runs/text_pattern.h"
#include "world/runs/threads.h"

namespace orvex::integration {
namespace {

using runs::TextPattern;

std::chrono::microseconds ParseTime(const std::string& seconds, const std::string& microseconds) {
  std::tm utc{};
  ::strptime(seconds.c_str(), "%Y-%m-%dT%H:%M:%S", &utc);
  return std::chrono::seconds(::timegm(&utc)) + std::chrono::microseconds(std::stoll(microseconds));
}

// The journal writes a buffer as its number.
std::string KindOf(const std::string& buffer, const std::string& level) {
  return level + (buffer == "main" ? "0" : "2");
}

std::string WithLineBreaks(std::string text) {
  for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at + 1)) {
    text.replace(at, 2, "\n");
  }
  return text;
}

bool IsColourOf(const std::string& level, const std::string& colour) {
  static const std::map<std::string, std::string> colours{{"D", "37"}, {"I", "32"}, {"W", "33"}, {"E", "31"}};
  return colours.at(level) == colour;
}

std::string Marked(const Lines& lines, std::size_t marked) {
  std::string text;
  for (std::size_t n = 0; n < lines.size(); ++n) {
    text += (n == marked ? "  > " : "    ") + lines[n] + "\n";
  }
  return text;
}

Lines DescribedIf(const std::vector<LogLine>& lines, const std::function<bool(const LogLine&)>& isWanted) {
  Lines described;
  for (const LogLine& line : lines) {
    if (isWanted(line)) {
      described.push_back(line.Described());
    }
  }
  return described;
}

}  // namespace

LogLine ParseLogLine(const std::string& line) {
  static const std::regex head(R"re((\S{19})\.(\d{6})Z (main|system) ([DIWE]) ([^:]+): (.*))re");
  static const std::regex message("\\w+\\.\\w+: (\\w+)\\(\\d+\\) > \033\\[(\\d+)m(.*)\033\\[0m");
  LogLine parsed;
  std::smatch parts;
  if (!std::regex_match(line, parts, head)) {
    parsed.text = line;
    return parsed;
  }
  const std::string level = parts[4];
  const std::string rest = parts[6];
  parsed.time = ParseTime(parts[1], parts[2]);
  parsed.kind = KindOf(parts[3], level);
  std::smatch fields;
  if (parts[5] != "Orvex" || !std::regex_match(rest, fields, message)) {
    parsed.text = WithLineBreaks(rest);
    parsed.isInOrder = parts[5] == "orvex-host";
    return parsed;
  }
  parsed.function = fields[1];
  parsed.isInOrder = IsColourOf(level, fields[2]);
  parsed.text = WithLineBreaks(fields[3]);
  return parsed;
}

void LogFile::Read() {
  std::ifstream file(m_Path, std::ios::binary);
  file.seekg(m_Offset);
  std::string line;
  while (std::getline(file, line) && !file.eof()) {
    m_Offset = file.tellg();
    m_Lines.push_back(ParseLogLine(line));
  }
}

int CountOf(const std::vector<LogLine>& lines, const std::string& pattern) {
  const TextPattern wanted(pattern);
  return static_cast<int>(
      std::count_if(lines.begin(), lines.end(), [&](const LogLine& line) { return wanted.Matches(line.text); }));
}

Lines Described(const std::vector<LogLine>& lines) {
  return DescribedIf(lines, [](const LogLine&) { return true; });
}

Lines DescribedOfHost(const std::vector<LogLine>& lines) {
  return DescribedIf(lines, [](const LogLine& line) { return line.function.empty(); });
}

Lines DescribedOfThreads(const std::vector<LogLine>& lines, const std::string& threads) {
  return DescribedIf(lines, [&](const LogLine& line) {
    return !line.function.empty() &&
           runs::ThreadsThatLogIn(line.function).find_first_of(threads) != std::string_view::npos;
  });
}

std::string Difference(const Lines& lines, const Lines& patterns) {
  const auto [line, pattern] = std::mismatch(
      lines.begin(), lines.end(), patterns.begin(), patterns.end(),
      [](const std::string& text, const std::string& wanted) { return TextPattern(wanted).Matches(text); });
  if (line == lines.end() && pattern == patterns.end()) {
    return "";
  }
  const auto position = static_cast<std::size_t>(line - lines.begin());
  return "expected here: " + (pattern == patterns.end() ? std::string("nothing more") : "\"" + *pattern + "\"") +
         "\nlogged:\n" + Marked(lines, position) + (line == lines.end() ? "  > (end)\n" : "");
}

std::string MissingInOrder(const Lines& lines, const Lines& patterns) {
  auto line = lines.begin();
  for (const std::string& text : patterns) {
    const TextPattern pattern(text);
    line = std::find_if(line, lines.end(), [&](const std::string& logged) { return pattern.Matches(logged); });
    if (line == lines.end()) {
      return "not met: \"" + text + "\"\nlogged:\n" + Marked(lines, lines.size());
    }
    ++line;
  }
  return "";
}

}  // namespace orvex::integration
