// A journal as it has to be, written down by hand and compared with what a run left, line by line.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "world/journal.h"

namespace orvex::runs {

// Joins hand-written fragments: a line of text is a line of the journal, an empty one is none. In a fragment, ${name}
// stands for what Set() gave the name, ${clock} for the wall clock's "seconds:microseconds" at that moment, ${} for
// nothing, \n for a line end within a line, and the fields of TextPattern for what is not known beforehand.
class Golden {
public:
  struct Line {
    double ms;
    std::string thread;
    std::string pattern;
  };

  // When and on which thread the lines that follow are made.
  Golden& At(double milliseconds);
  Golden& On(const std::string& thread);
  Golden& Set(const std::string& name, const std::string& value);
  Golden& Set(const std::string& name, std::int64_t value) { return Set(name, std::to_string(value)); }
  Golden& Add(const std::string& fragment);
  double Now() const { return m_Ms; }

  // In order of time; what happens at the same time in the order in which it was added.
  std::vector<Line> Lines() const;

private:
  std::string Filled(const std::string& line) const;
  std::string Value(const std::string& name) const;

  double m_Ms = 0.0;
  std::string m_Thread = "main";
  std::map<std::string, std::string> m_Values;
  std::vector<Line> m_Lines;
};

// Do thread, time (to a microsecond) and text agree, line by line? The answer shows the first difference.
testing::AssertionResult Agree(const Golden& golden, const world::Journal& journal);

}  // namespace orvex::runs
