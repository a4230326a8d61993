// Remembers what was reported.
#include "linux/known_problems.h"

#include "linux/port.h"

namespace orvex::port {

void KnownProblems::Report(const std::string& name, const std::string& problem) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Problems[name].insert(problem).second) {
    ReportProblem(problem);
  }
}

void KnownProblems::Forget(const std::string& name) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_Problems.erase(name);
}

}  // namespace orvex::port
