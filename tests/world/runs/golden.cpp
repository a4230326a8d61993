// A journal as it has to be.
#include "world/runs/golden.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "world/runs/text_pattern.h"

namespace orvex::runs {

namespace {

constexpr double kToleranceMs = 0.001;
constexpr std::int64_t kWallClockStartUs = 1'700'000'000'000'000;
constexpr std::size_t kLinesShown = 6;

double Milliseconds(world::Time time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

std::string WithLineEnds(std::string text) {
  for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at + 1)) {
    text.replace(at, 2, "\n");
  }
  return text;
}

std::string Shown(double ms, const std::string& thread, const std::string& text) {
  std::ostringstream line;
  line << std::fixed << std::setprecision(3) << std::setw(12) << ms << "  " << std::left << std::setw(9) << thread
       << text;
  return line.str();
}

bool IsSame(const Golden::Line& line, const world::Entry& entry) {
  return line.thread == entry.thread && std::abs(line.ms - Milliseconds(entry.at)) <= kToleranceMs &&
         TextPattern(line.pattern).Matches(entry.text);
}

testing::AssertionResult Difference(const std::vector<Golden::Line>& lines, const std::vector<world::Entry>& entries,
                                    std::size_t at) {
  auto result = testing::AssertionFailure();
  result << "the journal differs in line " << at + 1 << " of " << lines.size() << ", after\n";
  for (std::size_t i = at > kLinesShown ? at - kLinesShown : 0; i < at; ++i) {
    result << "  " << Shown(Milliseconds(entries[i].at), entries[i].thread, entries[i].text) << '\n';
  }
  for (std::size_t i = at; i < std::min(at + kLinesShown, std::max(lines.size(), entries.size())); ++i) {
    result << "- " << (i < lines.size() ? Shown(lines[i].ms, lines[i].thread, lines[i].pattern) : "(the end)") << '\n'
           << "+ "
           << (i < entries.size() ? Shown(Milliseconds(entries[i].at), entries[i].thread, entries[i].text)
                                  : "(the end)")
           << '\n';
  }
  return result;
}

}  // namespace

Golden& Golden::At(double milliseconds) {
  m_Ms = milliseconds;
  return *this;
}

Golden& Golden::On(const std::string& thread) {
  m_Thread = thread;
  return *this;
}

Golden& Golden::Set(const std::string& name, const std::string& value) {
  m_Values[name] = value;
  return *this;
}

Golden& Golden::Add(const std::string& fragment) {
  std::istringstream lines(fragment);
  for (std::string line; std::getline(lines, line);) {
    const std::string filled = Filled(line);
    if (!filled.empty()) {
      m_Lines.push_back({m_Ms, m_Thread, WithLineEnds(filled)});
    }
  }
  return *this;
}

std::vector<Golden::Line> Golden::Lines() const {
  std::vector<Line> lines = m_Lines;
  std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.ms < b.ms; });
  return lines;
}

std::string Golden::Filled(const std::string& line) const {
  std::string filled;
  std::size_t done = 0;
  for (std::size_t at = line.find("${"); at != std::string::npos; at = line.find("${", done)) {
    const std::size_t end = line.find('}', at);
    filled += line.substr(done, at - done) + Value(line.substr(at + 2, end - at - 2));
    done = end + 1;
  }
  return filled + line.substr(done);
}

std::string Golden::Value(const std::string& name) const {
  if (name.empty()) {
    return "";
  }
  const auto value = m_Values.find(name);
  if (value != m_Values.end()) {
    return value->second;
  }
  if (name == "clock") {
    const std::int64_t us = kWallClockStartUs + std::llround(m_Ms * 1e6) / 1000;
    return std::to_string(us / 1'000'000) + ":" + std::to_string(us % 1'000'000);
  }
  throw std::logic_error("a fragment names ${" + name + "}, which nobody has set");
}

testing::AssertionResult Agree(const Golden& golden, const world::Journal& journal) {
  const std::vector<Golden::Line> lines = golden.Lines();
  const std::vector<world::Entry>& entries = journal.Entries();
  for (std::size_t i = 0; i < std::max(lines.size(), entries.size()); ++i) {
    if (i >= lines.size() || i >= entries.size() || !IsSame(lines[i], entries[i])) {
      return Difference(lines, entries, i);
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace orvex::runs
