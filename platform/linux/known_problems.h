// Problems that last: each is reported once, however often it is met.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>

namespace orvex::port {

// Any thread.
class KnownProblems {
public:
  // Reports `problem` of `name` unless it was reported since the last Forget().
  void Report(const std::string& name, const std::string& problem);
  // `name` is in order again.
  void Forget(const std::string& name);

private:
  std::mutex m_Mutex;
  std::map<std::string, std::set<std::string>> m_Problems;
};

}  // namespace orvex::port
