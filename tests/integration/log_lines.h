// The lines of a service.log, taken apart.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::integration {

// Who has written a line. Lines of one theme have an order of their own; different themes interleave.
enum class Theme {
  kRun,        // main loop and recorder thread, which follow one another
  kDetection,  // voice delivery thread: what it found, and its callbacks
  kBlocks,     // voice delivery thread: what it says of every block
  kWorker,     // the test sound's worker
  kHost,       // the television itself, about its files
};

struct LogLine {
  std::chrono::microseconds time{0};  // since the epoch
  std::string function;
  std::string text;        // without colours, with its line breaks
  char kind = '?';         // D I W E: level, in the main buffer; F: error in the system buffer; ?: anything else
  bool isInOrder = false;  // tag, "file: function(line) > ", colour of the level and colour reset are all there

  Theme GetTheme() const;
  std::string Described() const { return std::string(1, kind) + " " + text; }
};

LogLine ParseLogLine(const std::string& line);

// Whole lines of a file that another process writes.
class LogFile {
public:
  explicit LogFile(std::filesystem::path path) : m_Path(std::move(path)) {}

  // Reads on from where the last call ended.
  void Read();
  const std::vector<LogLine>& GetLines() const { return m_Lines; }

private:
  std::filesystem::path m_Path;
  std::streamoff m_Offset = 0;
  std::vector<LogLine> m_Lines;
};

// "*" in `pattern` stands for any text, the empty one included.
bool MatchesPattern(const std::string& text, const std::string& pattern);

// The described lines of one theme.
std::vector<std::string> LinesOf(const std::vector<LogLine>& lines, Theme theme);

// Empty when every line matches its pattern, none is missing and none is left over; else where they part.
std::string Difference(const std::vector<std::string>& lines, const std::vector<std::string>& patterns);
// Empty when the patterns are met one after the other, with anything in between; else the first that is not.
std::string MissingInOrder(const std::vector<std::string>& lines, const std::vector<std::string>& patterns);

}  // namespace orvex::integration
