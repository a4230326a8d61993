// Takes the lines of a service.log apart and compares them with patterns.
#include "integration/log_lines.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fstream>
#include <map>
#include <regex>

namespace orvex::integration {
namespace {

const std::map<std::string, Theme>& ThemesOfFunctions() {
  static const std::map<std::string, Theme> themes{
      {"m_ReceiveBTAudioDataCB", Theme::kBlocks},
      {"m_ReceiveBlock", Theme::kBlocks},
      {"m_SyncAlgorithm", Theme::kBlocks},
      {"m_SetBTExtenCount", Theme::kBlocks},
      {"DebugDump", Theme::kBlocks},
      {"m_EndRecodeOfAmbientNoise", Theme::kDetection},
      {"m_SetParamWith17K", Theme::kDetection},
      {"m_SetParamWith19K", Theme::kDetection},
      {"m_BeginWith17K", Theme::kDetection},
      {"m_BeginWith19K", Theme::kDetection},
      {"m_CompleteDiffCalculation", Theme::kDetection},
      {"m_StopAbnormalCalcuation", Theme::kDetection},
      {"m_OnEndAmientNoiseCallback", Theme::kDetection},
      {"m_OnEndCalculationDiffCallback", Theme::kDetection},
      {"m_OnAbnomalStatusCallback", Theme::kDetection},
      {"m_StartPlayCB", Theme::kWorker},
      {"m_PlayWave", Theme::kWorker},
      {"m_LoadWaveFile", Theme::kWorker},
      {"Play", Theme::kWorker},
      {"m_Play", Theme::kWorker},
      {"m_WriteFrames", Theme::kWorker},
      {"m_HandleWriteError", Theme::kWorker},
      {"m_Recover", Theme::kWorker},
      {"", Theme::kHost},
  };
  return themes;
}

std::chrono::microseconds ParseTime(const std::string& seconds, const std::string& microseconds) {
  std::tm utc{};
  ::strptime(seconds.c_str(), "%Y-%m-%dT%H:%M:%S", &utc);
  return std::chrono::seconds(::timegm(&utc)) + std::chrono::microseconds(std::stoll(microseconds));
}

char KindOf(const std::string& buffer, const std::string& level) {
  if (buffer == "main") {
    return level[0];
  }
  return level == "E" ? 'F' : '?';
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

std::string Numbered(const std::vector<std::string>& lines, std::size_t marked) {
  std::string text;
  for (std::size_t n = 0; n < lines.size(); ++n) {
    text += (n == marked ? "  > " : "    ") + lines[n] + "\n";
  }
  return text;
}

}  // namespace

Theme LogLine::GetTheme() const {
  const auto theme = ThemesOfFunctions().find(function);
  return theme == ThemesOfFunctions().end() ? Theme::kRun : theme->second;
}

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

bool MatchesPattern(const std::string& text, const std::string& pattern) {
  const std::size_t star = pattern.find('*');
  if (star == std::string::npos) {
    return text == pattern;
  }
  if (text.compare(0, star, pattern, 0, star) != 0) {
    return false;
  }
  const std::string rest = pattern.substr(star + 1);
  for (std::size_t at = star; at <= text.size(); ++at) {
    if (MatchesPattern(text.substr(at), rest)) {
      return true;
    }
  }
  return false;
}

std::vector<std::string> LinesOf(const std::vector<LogLine>& lines, Theme theme) {
  std::vector<std::string> described;
  for (const LogLine& line : lines) {
    if (line.GetTheme() == theme) {
      described.push_back(line.Described());
    }
  }
  return described;
}

std::string Difference(const std::vector<std::string>& lines, const std::vector<std::string>& patterns) {
  const auto [line, pattern] =
      std::mismatch(lines.begin(), lines.end(), patterns.begin(), patterns.end(), MatchesPattern);
  if (line == lines.end() && pattern == patterns.end()) {
    return "";
  }
  const auto position = static_cast<std::size_t>(line - lines.begin());
  return "expected here: " + (pattern == patterns.end() ? std::string("nothing more") : "\"" + *pattern + "\"") +
         "\nlogged:\n" + Numbered(lines, position) + (line == lines.end() ? "  > (end)\n" : "");
}

std::string MissingInOrder(const std::vector<std::string>& lines, const std::vector<std::string>& patterns) {
  auto line = lines.begin();
  for (const std::string& pattern : patterns) {
    line = std::find_if(line, lines.end(), [&](const std::string& text) { return MatchesPattern(text, pattern); });
    if (line == lines.end()) {
      return "not met: \"" + pattern + "\"\nlogged:\n" + Numbered(lines, lines.size());
    }
    ++line;
  }
  return "";
}

}  // namespace orvex::integration
