// The journal of a world: every platform call and every log line, in order, with its time and thread.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "orvex/platform/system_log.h"
#include "world/scheduler.h"

namespace orvex::world {

// One line. `text` is what tests compare:
//   log line       "<D|I|W|E><buffer> <message>", the message without colours, such as "E2 Assertion failed"
//   platform call  "> name(arguments) = result"
struct Entry {
  Time at;
  std::string thread;
  std::string text;
  std::string file;      // of a log line
  std::string function;  // of a log line
  // Of a log line: all that the system log was given.
  std::string record{};
  std::string tag{};
  LogBuffer buffer{};
  LogPriority priority{};
};

class Journal {
public:
  void Add(Entry entry);
  // Runs right after each entry was added, on the thread that made it.
  std::function<void()> onAdd;
  void Clear() { m_Entries.clear(); }
  const std::vector<Entry>& Entries() const { return m_Entries; }

  // Texts of all entries, of the log lines, of the calls.
  std::vector<std::string> Texts() const;
  std::vector<std::string> Logs() const;
  std::vector<std::string> Calls() const;
  // How often `text` is there.
  int Count(const std::string& text) const;
  bool Has(const std::string& text) const { return Count(text) > 0; }
  // How many texts begin with `beginning`.
  int CountStartingWith(const std::string& beginning) const;
  // The first entry with this text; throws std::out_of_range when there is none.
  const Entry& Find(const std::string& text) const;
  // The whole journal, a line each: milliseconds, thread, text.
  void Print(std::ostream& out) const;

private:
  std::vector<Entry> m_Entries;
};

}  // namespace orvex::world
