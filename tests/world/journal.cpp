// Counts and searches by text.
#include "world/journal.h"

#include <algorithm>
#include <iomanip>
#include <stdexcept>
#include <utility>

namespace orvex::world {

namespace {

bool IsCall(const Entry& entry) {
  return entry.text.compare(0, 2, "> ") == 0;
}

template <class Predicate>
std::vector<std::string> TextsIf(const std::vector<Entry>& entries, Predicate wanted) {
  std::vector<std::string> texts;
  for (const Entry& entry : entries) {
    if (wanted(entry)) {
      texts.push_back(entry.text);
    }
  }
  return texts;
}

}  // namespace

void Journal::Add(Entry entry) {
  m_Entries.push_back(std::move(entry));
  if (onAdd) {
    onAdd();
  }
}

std::vector<std::string> Journal::Texts() const {
  return TextsIf(m_Entries, [](const Entry&) { return true; });
}

std::vector<std::string> Journal::Logs() const {
  return TextsIf(m_Entries, [](const Entry& entry) { return !IsCall(entry); });
}

std::vector<std::string> Journal::Calls() const {
  return TextsIf(m_Entries, IsCall);
}

int Journal::Count(const std::string& text) const {
  return static_cast<int>(
      std::count_if(m_Entries.begin(), m_Entries.end(), [&](const Entry& entry) { return entry.text == text; }));
}

int Journal::CountStartingWith(const std::string& beginning) const {
  return static_cast<int>(std::count_if(m_Entries.begin(), m_Entries.end(), [&](const Entry& entry) {
    return entry.text.compare(0, beginning.size(), beginning) == 0;
  }));
}

const Entry& Journal::Find(const std::string& text) const {
  const auto found =
      std::find_if(m_Entries.begin(), m_Entries.end(), [&](const Entry& entry) { return entry.text == text; });
  if (found == m_Entries.end()) {
    throw std::out_of_range("not in the journal: " + text);
  }
  return *found;
}

void Journal::Print(std::ostream& out) const {
  for (const Entry& entry : m_Entries) {
    out << std::setw(12) << std::fixed << std::setprecision(3)
        << std::chrono::duration<double, std::milli>(entry.at).count() << "  " << std::left << std::setw(9)
        << entry.thread << std::right << entry.text << '\n';
  }
}

}  // namespace orvex::world
