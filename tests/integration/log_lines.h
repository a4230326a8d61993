// The lines of a service.log, taken apart.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::integration {

using Lines = std::vector<std::string>;

struct LogLine {
  std::chrono::microseconds time{0};  // since the epoch
  std::string function;               // of the service; empty: the port has written the line
  std::string text;                   // without colours, with its line breaks
  std::string kind;                   // level and buffer: D0, I0, W0, E0 or E2
  bool isInOrder = false;  // tag, "file: function(line) > ", colour of the level and colour reset are all there

  // As in the journal of a run in virtual time: "E2 Assertion failed".
  std::string Described() const { return kind + " " + text; }
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

// Patterns below are those of runs::TextPattern: "{s}" stands for any text.

// How many of the lines have a text like this, of whatever kind.
int CountOf(const std::vector<LogLine>& lines, const std::string& pattern);

// Of all lines, of those that the port has written, and of those whose function may log on one of these threads (see
// runs::ThreadsThatLogIn).
Lines Described(const std::vector<LogLine>& lines);
Lines DescribedOfHost(const std::vector<LogLine>& lines);
Lines DescribedOfThreads(const std::vector<LogLine>& lines, const std::string& threads);

// Empty when every line matches its pattern, none is missing and none is left over; else where they part.
std::string Difference(const Lines& lines, const Lines& patterns);
// Empty when the patterns are met one after the other, with anything in between; else the first that is not.
std::string MissingInOrder(const Lines& lines, const Lines& patterns);

}  // namespace orvex::integration
